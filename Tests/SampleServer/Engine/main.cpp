#include "CaseTests.h"

#include <gtest/gtest.h>

/// Runs the cases of this folder, or of the one that is named.
int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    SampleServer::registerCases(argc > 1 ? argv[1] : ENGINE_CASES_FOLDER);
    return RUN_ALL_TESTS();
}
