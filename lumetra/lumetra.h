#include "lumetra" // the one public header, under a name with an extension
