#include "LogCapture.h"

int main(int argc, char** argv)
{
    return virlo::test::runAllTests(argc, argv);
}
