// Duplicate data store memory blocks under the three settings of "UniqueDataStoreMsg", the
// commented block that counts without being reported, and the severities that skip detection.
#include "src/algorithms/datastoreusage.h"

#include <gtest/gtest.h>

#include <functional>

#include "tests/src/algorithms/checkbench.h"

namespace bkedittimecheck::testing {
namespace {

blockara::PropertyMap store(const std::string& name) { return {{"DataStoreName", name}}; }

class DataStoreUsageTest : public CheckBench {
 public:
  struct Case {
    std::string what;
    std::int32_t setting;  // 0 none, 1 warning, 2 error
    std::function<void(DataStoreUsageTest&)> build;
    Lines expected;
  };

  void run(std::uint32_t severity = 5) {
    DataStoreUsage check(L"m", severity);
    check.evaluate(*data, *db);
  }
};

TEST_F(DataStoreUsageTest, DuplicatesUnderEachSetting) {
  const auto twoInOneSystem = [](DataStoreUsageTest& t) {
    t.add(u"m", "DataStoreMemory", u"a", store("A"));
    t.add(u"m", "DataStoreMemory", u"b", store("A"));
    t.add(u"m", "DataStoreMemory", u"c", store("C"));
  };
  const auto twoInTwoSystems = [](DataStoreUsageTest& t) {
    t.add(u"m", "SubSystem", u"s");
    t.add(u"m", "DataStoreMemory", u"a", store("A"));
    t.add(u"m/s", "DataStoreMemory", u"b", store("A"));
  };
  const std::vector<Case> cases{
      {"one system, setting none", 0, twoInOneSystem,
       {"/a|DuplicateDataStoreMemoryBlocksSameGraph|1",
        "/b|DuplicateDataStoreMemoryBlocksSameGraph|1"}},
      {"one system, setting error: both types", 2, twoInOneSystem,
       {"/a|DuplicateDataStoreMemoryBlocksDiagnostic|1",
        "/a|DuplicateDataStoreMemoryBlocksSameGraph|1",
        "/b|DuplicateDataStoreMemoryBlocksDiagnostic|1",
        "/b|DuplicateDataStoreMemoryBlocksSameGraph|1"}},
      {"two systems, setting none", 0, twoInTwoSystems, {}},
      {"two systems, setting warning", 1, twoInTwoSystems,
       {"/a|DuplicateDataStoreMemoryBlocksDiagnostic|0",
        "/s/b|DuplicateDataStoreMemoryBlocksDiagnostic|0"}},
      {"two systems, setting error", 2, twoInTwoSystems,
       {"/a|DuplicateDataStoreMemoryBlocksDiagnostic|1",
        "/s/b|DuplicateDataStoreMemoryBlocksDiagnostic|1"}},
      {"three, the first commented: it counts but is not reported", 0,
       [](DataStoreUsageTest& t) {
         t.add(u"m", "DataStoreMemory", u"a", store("A"));
         t.add(u"m", "DataStoreMemory", u"b", store("A"));
         t.add(u"m", "DataStoreMemory", u"c", store("A"));
         t.d->editing().setCommentState(u"m/a", 1);
       },
       {"/b|DuplicateDataStoreMemoryBlocksSameGraph|1",
        "/c|DuplicateDataStoreMemoryBlocksSameGraph|1"}},
      {"three, the second commented: it is left out", 0,
       [](DataStoreUsageTest& t) {
         t.add(u"m", "DataStoreMemory", u"a", store("A"));
         t.add(u"m", "DataStoreMemory", u"b", store("A"));
         t.add(u"m", "DataStoreMemory", u"c", store("B"));
         t.d->editing().setCommentState(u"m/b", 1);
       },
       {}},
  };
  for (const Case& c : cases) {
    reset();
    c.build(*this);
    snapshotAll();
    data->setUniqueDataStoreMsg(c.setting);
    run();
    EXPECT_EQ(records(DataStoreUsage::kCheckId), c.expected) << c.what;
  }
}

TEST_F(DataStoreUsageTest, ASettingChangeReplacesTheSeverityAndSeverityZeroClears) {
  add(u"m", "SubSystem", u"s");
  add(u"m", "DataStoreMemory", u"a", store("A"));
  add(u"m/s", "DataStoreMemory", u"b", store("A"));
  snapshotAll();
  data->setUniqueDataStoreMsg(2);
  run();
  data->setUniqueDataStoreMsg(1);
  run();
  EXPECT_EQ(records(DataStoreUsage::kCheckId),
            (Lines{"/a|DuplicateDataStoreMemoryBlocksDiagnostic|0",
                   "/s/b|DuplicateDataStoreMemoryBlocksDiagnostic|0"}));
  run(0);  // warnings only: nothing is looked for, so every record goes
  EXPECT_EQ(records(DataStoreUsage::kCheckId), Lines{});
}

}  // namespace
}  // namespace bkedittimecheck::testing
