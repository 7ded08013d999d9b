#include "CaseTests.h"

#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    SampleServer::registerCases(ENGINE_CASES_FOLDER);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
