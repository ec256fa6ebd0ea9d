#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/model/bkblock.h"
#include "host/model/configset.h"

class bkGraph;
class BKCompBD;
class BKExecBD;
namespace blockara {
class DiagramEditing;
}

/// The edit parameters of a diagram: a flags word.
struct bkBlockDiagramEditParams {
  /// Bit 19: the diagram is under rule-auditor edit-time checking.
  static constexpr std::uint32_t auditorModeOn = 0x80000;

  std::uint32_t flags = 0;  ///< the flags word

  /// The edit parameters of `diagram` (a reference into it). Throws std::invalid_argument for
  /// a null diagram. Main thread.
  static bkBlockDiagramEditParams& get(BKRootBD* diagram);
};

/// A block diagram: a model or a library.
///
/// Thread contract: main thread only. A diagram is made, found and destroyed through
/// `bkBlockDiagramSet`. It owns its root graph (and through it every block), its compile and
/// execution sides and its editing state. `pathIndex` maps full paths to live blocks for O(1)
/// lookup and is kept current by the editing layer.
class BKRootBD {
 public:
  /// Diagram kinds.
  enum Kind : int { Model = 0, Library = 1 };

  BKRootBD(bksvString name, int kind);
  ~BKRootBD();
  BKRootBD(const BKRootBD&) = delete;
  BKRootBD& operator=(const BKRootBD&) = delete;

  /// The diagram's handle, a double never reused, from the same sequence as block handles.
  double getHandle() const { return handle; }
  /// The diagram's name (also the first element of every path in it).
  const bksvString& getName() const { return name; }
  /// The diagram kind; 1 is a library.
  int getDiagramKind() const { return kind; }
  /// True for kind 1.
  bool isLibrary() const { return kind == Library; }
  /// Sets the kind (a loaded file may be opened as a library).
  void setDiagramKind(int newKind) { kind = newKind; }
  /// While set, the edit-time checker does no work for the diagram.
  bool isSuspended() const { return suspended; }
  void setSuspended(bool on) { suspended = on; }

  /// The edit parameters.
  bkBlockDiagramEditParams& editParams() { return params; }
  const bkBlockDiagramEditParams& editParams() const { return params; }
  /// True when the rule-auditor bit of the edit parameters is set.
  bool auditorModeOn() const { return (params.flags & bkBlockDiagramEditParams::auditorModeOn) != 0; }
  /// Sets or clears the rule-auditor bit.
  void setAuditorMode(bool on);

  /// The root system.
  bkGraph* getRootGraph() const { return root.get(); }
  /// The live block at full path `path`, or null.
  BKBlock* findBlock(const bksvString& path) const;
  /// The live block with SID number `sid`, or null.
  BKBlock* findBlockBySID(int sid) const;
  /// The graph at system path `path` (the diagram name for the root), or null.
  bkGraph* findSystem(const bksvString& path) const;
  /// The number of live blocks.
  std::size_t blockCount() const { return pathIndex.size(); }
  /// Every live block, sorted by full path.
  std::vector<BKBlock*> blocksInPathOrder() const;

  /// The configuration sets, and which is active.
  std::vector<ConfigSet>& configSets() { return sets; }
  const std::vector<ConfigSet>& configSets() const { return sets; }
  /// The active set, or null when there is none.
  ConfigSet* activeConfigSet();
  const ConfigSet* activeConfigSet() const;
  /// Makes set `index` active; std::nullopt leaves the diagram with none. Throws
  /// std::out_of_range for a bad index.
  void setActiveConfigSet(std::optional<std::size_t> index);
  /// Removes the active set; the diagram then has no active set.
  void removeConfigSet();
  /// The index of the active set, if any.
  std::optional<std::size_t> activeConfigSetIndex() const { return activeSet; }

  /// The path of the diagram's exclusions file; empty when it names none.
  const bksvString& getExclusionFilePath() const { return exclusionFilePath; }
  void setExclusionFilePath(bksvString path) { exclusionFilePath = std::move(path); }

  /// Extra package parts, part name ("/auditor/exclusions.xml") -> bytes.
  std::map<std::string, std::string>& parts() { return storedParts; }
  const std::map<std::string, std::string>& parts() const { return storedParts; }

  /// The file the diagram was last loaded from or saved to; empty when none.
  const std::string& getFilePath() const { return filePath; }
  void setFilePath(std::string path) { filePath = std::move(path); }

  /// The compile side and the execution side.
  BKCompBD* getCompBD() const { return compiled.get(); }
  BKExecBD* getExecBD() const { return executing.get(); }

  /// The edit API of this diagram.
  blockara::DiagramEditing& editing() { return *edits; }

  /// Raises edit signal 1 (opened for editing). Slot exceptions pass to the caller.
  void notifyOpened();

  /// The SID number the next new block gets; the editing layer and the reader advance it.
  int takeNextSID() { return nextSID++; }
  int peekNextSID() const { return nextSID; }
  void setNextSID(int sid) { nextSID = sid; }

 private:
  friend class BlockMutator;
  friend class bkBlockDiagramSet;

  double handle;
  bksvString name;
  int kind;
  bool suspended = false;
  bkBlockDiagramEditParams params;
  std::unique_ptr<bkGraph> root;
  // Live blocks by full path. A key views the path its block keeps, which changes only while the
  // block is out of the index.
  std::unordered_map<std::u16string_view, BKBlock*> pathIndex;
  std::unordered_map<int, BKBlock*> sidIndex;          // live blocks by SID number
  std::vector<ConfigSet> sets;
  std::optional<std::size_t> activeSet;
  bksvString exclusionFilePath;
  std::map<std::string, std::string> storedParts;
  std::string filePath;
  int nextSID = 1;
  std::unique_ptr<BKCompBD> compiled;
  std::unique_ptr<BKExecBD> executing;
  std::unique_ptr<blockara::DiagramEditing> edits;
};

/// The compile side of a diagram. Main thread.
class BKCompBD {
 public:
  explicit BKCompBD(BKRootBD* diagram) : diagram(diagram) {}
  ~BKCompBD();
  BKCompBD(const BKCompBD&) = delete;
  BKCompBD& operator=(const BKCompBD&) = delete;
  /// The diagram being compiled.
  BKRootBD* getBlockDiagram() const { return diagram; }
  /// Raises compile event `event` (1, 33, 34, 35).
  void raise(int event);

 private:
  BKRootBD* diagram;
};

/// The execution side of a diagram. Main thread.
class BKExecBD {
 public:
  explicit BKExecBD(BKCompBD* compiled) : compiled(compiled) {}
  ~BKExecBD();
  BKExecBD(const BKExecBD&) = delete;
  BKExecBD& operator=(const BKExecBD&) = delete;
  /// The compiled diagram being executed.
  BKCompBD* getCompBD() const { return compiled; }
  /// Raises execution event `event` (2, 5).
  void raise(int event);

 private:
  BKCompBD* compiled;
};

/// The set of open diagrams, by name. Main thread only.
class bkBlockDiagramSet {
 public:
  /// The open diagram named `name`, or null when none is open.
  static BKRootBD* nameToBlockDiagram(const bksvString& name);
  /// Makes an empty diagram with a default active configuration set. Throws
  /// std::invalid_argument when the name is empty, contains "/" or is already open.
  static BKRootBD* create(const bksvString& name, int kind = BKRootBD::Model);
  /// Adopts a diagram built elsewhere (the file reader). Throws as `create`.
  static BKRootBD* adopt(std::unique_ptr<BKRootBD> diagram);
  /// Raises edit signal 5, then destroys the diagram and everything it owns: its blocks' handles
  /// resolve to null from then on. Slot exceptions are caught and dropped so that a close always
  /// completes.
  static void close(BKRootBD* diagram);
  /// Renames an open diagram: every path in it changes. Throws as `create`.
  static void rename(BKRootBD* diagram, const bksvString& newName);
  /// The open diagram with handle `handle`, or null.
  static BKRootBD* handleToBlockDiagram(double handle);
  /// Registers `observer`, called with each diagram just before it is destroyed (after edit
  /// signal 5). Observers live for the process; services such as studios use it.
  static void addCloseObserver(std::function<void(BKRootBD*)> observer);
  /// All open diagrams, sorted by name.
  static std::vector<BKRootBD*> all();
  /// Closes every open diagram (tests, program exit).
  static void closeAll();
};
