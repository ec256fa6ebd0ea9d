#pragma once

// Blocks of a real host diagram, snapshotted as the engine snapshots them under the rule
// auditor, for the constraint tests.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "host/model/bkrootbd.h"
#include "host/model/diagramediting.h"
#include "src/constraints/bkeditblock.h"
#include "src/constraints/blockparameterconstraint.h"
#include "tests/src/blockline.h"

namespace bkedittimecheck::testing {

/// A snapshot that captured nothing, of no particular block.
inline std::shared_ptr<bkEditBlock> bareSnapshot() {
  return std::make_shared<bkEditBlock>(1.5, "b", 201, L"cx/b", false, false);
}

class ConstraintFixture : public ::testing::Test {
 protected:
  void SetUp() override { diagram = bkBlockDiagramSet::create(u"cx"); }
  void TearDown() override { bkBlockDiagramSet::close(diagram); }

  /// Adds the block `line` describes ("NAME TYPE [KEY=VALUE ...]") to the root system.
  BKBlock* add(const std::string& line) {
    const BlockLine b(u"cx", line);
    return diagram->editing().addBlock(b.system, b.type, b.name, b.props);
  }

  /// The rule-auditor snapshot of `block`, with the parameters `constraints` name captured.
  static std::shared_ptr<bkEditBlock> snapshot(
      BKBlock* block, std::vector<std::shared_ptr<BlockParameterConstraint>> constraints = {}) {
    auto snap = std::make_shared<bkEditBlock>(block, true);
    snap->captureConstraintParameters(block, std::move(constraints));
    return snap;
  }

  BKRootBD* diagram = nullptr;
};

}  // namespace bkedittimecheck::testing
