// The process that the kill harness kills: runs one operation on a prepared order.
// Usage: qi_crash_op <folder of the prepared order> <operation>

#include "CrashOrder.h"

#include <cstdio>

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: qi_crash_op <folder> <operation>\n");
        return 2;
    }
    return qi::test::runCrashOperation(qi::test::CrashOrder(argv[1]), argv[2]) ? 0 : 1;
}
