#include <gtest/gtest.h>
#include <sys/resource.h>

int main(int argc, char **argv)
{
    // Hundreds of connections have both their ends in this process.
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
