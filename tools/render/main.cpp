#include "tools/render/program.h"

int main(int argc, char** argv)
{
    return zrrender::runProgram(argc, argv);
}
