#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/model/bkblock.h"
#include "host/signals/pluginchangereport.h"

class BKRootBD;

namespace blockara {

struct EditStep;
struct UndoEntry;

/// Properties or dialog parameters to set, by name.
using PropertyMap = std::map<std::string, BlockValue>;

/// The edit API of one diagram: every change a user can make, grouped in batches, with undo and
/// redo.
///
/// Each batch raises, when it ends, one `PluginChangeReport` with each batch signal whose
/// container is not empty, in the order 26 (added), 27 (changed), 28 (deleted), 33 (renamed or
/// re-parented); then comment signals (22 out, 23 through, 24 active) and model parameter
/// signals (41) in the order of the edits. An edit made outside a batch is a batch of its own.
/// Undo and redo are batches too and raise the reports of what they change.
///
/// A deleted block is kept by the undo entry that can restore it, so its handle still resolves;
/// when the history drops that entry (depth exceeded, `clearUndoHistory`, a new edit after an
/// undo, or the diagram closing) the block is destroyed and its handle resolves to null.
///
/// Thread contract: main thread only. Every edit validates before it changes anything: a failed
/// edit throws std::invalid_argument (bad path, name, type, property or value, with the path and
/// the problem in its message) and leaves the diagram as it was. Exceptions of signal slots pass
/// to the caller after the diagram has been changed.
class DiagramEditing {
 public:
  explicit DiagramEditing(BKRootBD& diagram);
  ~DiagramEditing();
  DiagramEditing(const DiagramEditing&) = delete;
  DiagramEditing& operator=(const DiagramEditing&) = delete;

  /// Adds a block of built-in type `type` named `name` into the system at `systemPath` and sets
  /// `props` on it. Returns the new block.
  BKBlock* addBlock(const bksvString& systemPath, const std::string& type, const bksvString& name,
                    const PropertyMap& props = {});
  /// Deletes the block at `path` and everything it contains.
  void deleteBlock(const bksvString& path);
  /// Renames the block at `path`. The new name must be non-empty and free in its system.
  void renameBlock(const bksvString& path, const bksvString& newName);
  /// Moves the block at `path` into the system at `newSystemPath` (not into itself).
  void moveBlock(const bksvString& path, const bksvString& newSystemPath);
  /// Sets dialog parameters and properties of the block at `path`; all are validated first.
  void setProperties(const bksvString& path, const PropertyMap& props);
  /// Sets the comment state (0 active, 1 out, 2 through) of the block at `path`.
  void setCommentState(const bksvString& path, int state);
  /// Sets a parameter of the active configuration set. Throws NoActiveConfigSet when none.
  void setModelParam(const std::string& name, const BlockParamValue& value);

  /// Begins a batch; batches nest and only the outermost end raises signals.
  void beginBatch();
  /// Ends a batch. Throws std::logic_error without a matching `beginBatch`.
  void endBatch();
  /// True inside a batch.
  bool inBatch() const { return batchDepth > 0; }

  /// Undoes the last batch; false when there is none. Throws std::logic_error inside a batch.
  bool undo();
  /// Redoes the last undone batch; false when there is none. Throws as `undo`.
  bool redo();
  /// The number of batches that can be undone / redone.
  std::size_t undoCount() const { return undoStack.size(); }
  std::size_t redoCount() const { return redoStack.size(); }
  /// The most batches the history keeps (default 100); older ones are dropped. 0 keeps none.
  void setUndoDepth(std::size_t depth);
  std::size_t undoDepth() const { return depth; }
  /// Drops the whole history (undo and redo).
  void clearUndoHistory();

 private:
  friend struct EditStep;

  void record(std::unique_ptr<EditStep> step);
  void finishBatch();
  void trimHistory();
  void replay(UndoEntry& entry, bool forward);

  BKRootBD& diagram;
  int batchDepth = 0;
  std::unique_ptr<UndoEntry> current;  // the batch being recorded
  std::deque<std::unique_ptr<UndoEntry>> undoStack;
  std::vector<std::unique_ptr<UndoEntry>> redoStack;
  std::size_t depth = 100;
};

/// Groups the edits made during its life into one batch of `diagram`.
///
/// Main thread. The destructor ends the batch; signal slot exceptions raised from the
/// destructor are dropped, so call `end()` to see them.
class EditBatch {
 public:
  explicit EditBatch(BKRootBD& diagram);
  ~EditBatch();
  EditBatch(const EditBatch&) = delete;
  EditBatch& operator=(const EditBatch&) = delete;
  /// Ends the batch now (once); slot exceptions pass to the caller.
  void end();

 private:
  BKRootBD& diagram;
  bool ended = false;
};

}  // namespace blockara
