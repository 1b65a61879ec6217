// The tables of the protocol are made as C. With their declarations in front of them they are good
// C++ as well, and the project needs no second language.
extern "C" {
#include <layer_shell_client.h>
#include <layer_shell_tables.h>
}
