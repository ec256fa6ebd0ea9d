// Duplicate data store memory blocks in one system (across systems the scenario
// interactive_datastore shows each setting), the commented block that counts without being
// reported, and a severity that skips detection.
#include "src/algorithms/datastoreusage.h"

#include "tests/src/algorithms/checkbench.h"

namespace bkedittimecheck::testing {
namespace {

class DataStoreUsageTest : public CheckBench {
 public:
  void run(std::int32_t setting, std::uint32_t severity = DataStoreUsage::kSeverity) {
    data->setUniqueDataStoreMsg(setting);
    DataStoreUsage(L"m", severity).evaluate(*data, *db);
  }
};

TEST_F(DataStoreUsageTest, DuplicatesUnderEachSetting) {
  const Lines oneSystem{"a DataStoreMemory DataStoreName=A", "b DataStoreMemory DataStoreName=A",
                        "c DataStoreMemory DataStoreName=C"};
  struct Case {
    std::string what;
    Lines blocks;
    std::int32_t setting;  // 0 none, 1 warning, 2 error
    Lines expected;
  };
  const std::vector<Case> cases{
      {"one system, none",
       oneSystem,
       0,
       {"a|DuplicateDataStoreMemoryBlocksSameGraph|1",
        "b|DuplicateDataStoreMemoryBlocksSameGraph|1"}},
      {"one system, error: both types",
       oneSystem,
       2,
       {"a|DuplicateDataStoreMemoryBlocksDiagnostic|1",
        "a|DuplicateDataStoreMemoryBlocksSameGraph|1",
        "b|DuplicateDataStoreMemoryBlocksDiagnostic|1",
        "b|DuplicateDataStoreMemoryBlocksSameGraph|1"}},
      {"the first of three commented: it counts but is not reported",
       {"a DataStoreMemory DataStoreName=A commented=1", "b DataStoreMemory DataStoreName=A",
        "c DataStoreMemory DataStoreName=A"},
       0,
       {"b|DuplicateDataStoreMemoryBlocksSameGraph|1",
        "c|DuplicateDataStoreMemoryBlocksSameGraph|1"}},
      {"the second of two commented: it is left out",
       {"a DataStoreMemory DataStoreName=A", "b DataStoreMemory DataStoreName=A commented=1"},
       0,
       {}},
  };
  for (const Case& c : cases) {
    build(c.blocks);
    run(c.setting);
    EXPECT_EQ(records(), c.expected) << c.what;
  }
}

TEST_F(DataStoreUsageTest, ASettingChangeReplacesTheSeverityAndSeverityZeroClears) {
  build(
      {"s SubSystem", "a DataStoreMemory DataStoreName=A", "s/b DataStoreMemory DataStoreName=A"});
  run(2);
  run(1);
  EXPECT_EQ(records(), (Lines{"a|DuplicateDataStoreMemoryBlocksDiagnostic|0",
                              "s/b|DuplicateDataStoreMemoryBlocksDiagnostic|0"}));
  run(1, Severity::kWarning);  // warnings only: nothing is looked for, every record goes
  EXPECT_EQ(records(), Lines{});
}

}  // namespace
}  // namespace bkedittimecheck::testing
