#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "host/model/bkrootbd.h"
#include "host/model/diagramediting.h"
#include "host/runtime/eventloop.h"
#include "src/bkeditbd.h"
#include "src/violationdatabase.h"
#include "tests/src/bkeditbdprobe.h"
#include "tests/src/blockline.h"

namespace bkedittimecheck::testing {

using Lines = std::vector<std::string>;

/// A diagram "m" in the reference host without an engine, snapshotted by the test into a
/// `bkEditBD` of its own, and a store: a whole-diagram check's `evaluate` runs on exactly that,
/// on the test's thread.
class CheckBench : public ::testing::Test {
 public:
  void SetUp() override { blockara::EventLoop::instance().adoptCurrentThread(); }
  void TearDown() override { bkBlockDiagramSet::closeAll(); }

  /// A fresh diagram, snapshot and store, with `blocks` (see BlockLine) in order of creation;
  /// "commented=1" comments the block out. Every block is snapshotted, and each event listener
  /// queued as the engine queues it.
  void build(const Lines& blocks) {
    bkBlockDiagramSet::closeAll();
    d = bkBlockDiagramSet::create(u"m", BKRootBD::Model);
    data = std::make_unique<bkEditBD>(L"m", false);
    db = std::make_unique<ViolationDatabase>();
    for (const std::string& line : blocks) {
      BlockLine entry(u"m", line);
      const bool commented = entry.props.erase("commented") > 0;
      BKBlock* b = d->editing().addBlock(entry.system, entry.type, entry.name, entry.props);
      if (commented) d->editing().setCommentState(entry.path(), 1);
      if (entry.type == "EventListener") {
        probe().subsysProperties().push(
            SubsysProperties{toWide(b->getFullPath(false)), b->getHandle(), true});
      }
    }
    for (BKBlock* b : d->blocksInPathOrder()) retake(b);
  }

  /// Snapshots one block again, as a later batch would.
  void retake(BKBlock* b) {
    probe().blocks()[b->getHandle()] = std::make_shared<bkEditBlock>(b, false);
  }
  BKBlock* block(const std::u16string& path) const { return d->findBlock(u"m/" + path); }
  bkEditBDProbe probe() { return bkEditBDProbe(*data); }

  /// The store as "path|type|severity[|commented]", the path below "m", sorted.
  Lines records() const { return recordLines(d, *db); }

  BKRootBD* d = nullptr;
  std::unique_ptr<bkEditBD> data;
  std::unique_ptr<ViolationDatabase> db;
};

}  // namespace bkedittimecheck::testing
