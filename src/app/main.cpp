// Vexil: the program. Everything but this line lives in vexil_app.
#include "mdlSubMain.h"

int main(int argc, char** argv) { return vexil::SubMain(argc, argv); }
