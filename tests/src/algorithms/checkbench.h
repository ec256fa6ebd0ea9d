#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "host/model/bkrootbd.h"
#include "host/model/diagramediting.h"
#include "host/runtime/eventloop.h"
#include "src/bkeditbd.h"
#include "tests/src/bkeditbdprobe.h"
#include "src/constraints/bkeditblock.h"
#include "src/hostinterface.h"
#include "src/violationdatabase.h"

namespace bkedittimecheck::testing {

using Lines = std::vector<std::string>;

/// A diagram in the reference host without an engine, its blocks snapshotted by the test into a
/// `bkEditBD` of its own, and a store: a whole-diagram check's `evaluate` runs on exactly that,
/// on the test's thread.
class CheckBench : public ::testing::Test {
 public:
  void SetUp() override {
    blockara::EventLoop::instance().adoptCurrentThread();
    reset();
  }
  void TearDown() override { bkBlockDiagramSet::closeAll(); }

  /// A fresh diagram "m", snapshot and store.
  void reset() {
    bkBlockDiagramSet::closeAll();
    d = bkBlockDiagramSet::create(u"m", BKRootBD::Model);
    data = std::make_unique<bkEditBD>(L"m", false);
    db = std::make_unique<ViolationDatabase>();
  }

  /// Adds a block to the system at `system` ("m" for the root).
  BKBlock* add(const std::u16string& system, const std::string& type, const std::u16string& name,
               const blockara::PropertyMap& props = {}) {
    return d->editing().addBlock(system, type, name, props);
  }

  /// Snapshots every block of the diagram into the block map, as a pass would hold them.
  void snapshotAll() {
    for (BKBlock* b : d->blocksInPathOrder()) {
      retake(b);
    }
  }

  /// Snapshots one block again, as a later batch would.
  void retake(BKBlock* b) {
    bkEditBDProbe(*data).blocks()[b->getHandle()] = std::make_shared<bkEditBlock>(b, false);
  }

  /// The records of `checkId` as "path|type|severity[|commented]", the path without the diagram
  /// name, sorted.
  Lines records(const std::string& checkId) const {
    Lines out;
    for (const auto& v : db->violationsByCheck(checkId)) {
      const BKBlock* b = handle2Block(v->blockHandle);
      std::string path = b ? ConvertUStringToStdString(b->getFullPath(false)).substr(1) : "?";
      std::string line = path + "|" + v->violationType + "|" + std::to_string(v->severity);
      if (v->isCommented) line += "|commented";
      out.push_back(line);
    }
    std::sort(out.begin(), out.end());
    return out;
  }

  /// The names of the blocks on `pendingClears`, in order.
  Lines cleared() const {
    Lines out;
    for (double h : db->pendingClears()) {
      const BKBlock* b = handle2Block(h);
      out.push_back(b ? ConvertUStringToStdString(b->getName()) : "?");
    }
    return out;
  }

  BKRootBD* d = nullptr;
  std::unique_ptr<bkEditBD> data;
  std::unique_ptr<ViolationDatabase> db;
};

}  // namespace bkedittimecheck::testing
