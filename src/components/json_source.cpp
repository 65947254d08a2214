// The one file that compiles the JSON library.
#include <boost/json/src.hpp>
