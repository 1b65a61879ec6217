// Options of the address sanitizer that the program needs wherever it is started.

extern "C" const char* __asan_default_options();  // NOLINT: the sanitizer asks by this name

extern "C" const char* __asan_default_options() {
  // The module of the desktop holds parts of the engine again; the program's come first.
  return "detect_odr_violation=0";
}
