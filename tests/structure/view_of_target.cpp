// Compiled with what the users of one target can see, and with the name of a header to include.
#include PLEMORA_INCLUDE
