#pragma once

#include <boost/signals2/connection.hpp>
#include <functional>
#include <string>

#include "host/signals/pluginchangereport.h"

class BKRootBD;
class BKBlock;
class BKCompBD;
class BKExecBD;

/// Events of a diagram's edit side, by the host's numbers.
enum BKGraphicalEvent : int {
  BKGE_DIAGRAM_OPENED = 1,           ///< diagram opened for editing
  BKGE_DIAGRAM_CLOSING = 5,          ///< diagram about to close
  BKGE_BLOCK_COMMENTED_OUT = 22,     ///< a block became commented out
  BKGE_BLOCK_COMMENTED_THROUGH = 23, ///< a block became commented through
  BKGE_BLOCK_UNCOMMENTED = 24,       ///< a block became active again
  BKGE_BLOCKS_ADDED = 26,            ///< batch: blocks added
  BKGE_BLOCKS_CHANGED = 27,          ///< batch: blocks changed
  BKGE_BLOCKS_DELETED = 28,          ///< batch: blocks deleted
  BKGE_BLOCKS_RENAMED = 33,          ///< batch: blocks renamed or re-parented
  BKGE_MODEL_PARAMETER_CHANGED = 41, ///< a parameter of the active configuration set changed
};

/// Events of a diagram's compile side.
enum BKCompEvent : int {
  BKCE_COMPILE_BEGIN = 1,       ///< compile begins
  BKCE_WORKSPACE_CHANGED = 33,  ///< the workspace may have changed
  BKCE_VARIABLES_CHANGED = 34,  ///< missing variables may have changed
  BKCE_COMPILE_END = 35,        ///< compile ends
};

/// Events of a diagram's execution side.
enum BKExecEvent : int {
  BKEE_EXECUTION_BEGIN = 2,  ///< execution begins
  BKEE_EXECUTION_END = 5,    ///< execution ends
};

/// Signal registration of the host. Every function here belongs to the main thread. Signals are
/// kept per diagram object and event number; a slot stays connected until its connection is
/// disconnected or the diagram side is dropped (`dropSignals`). A slot that throws lets the
/// exception pass to the code that raised the signal; later slots of that raise do not run.
namespace bkplugin {

using EditBdSlot = std::function<void(BKRootBD*)>;
using EditBdBatchSlot = std::function<void(BKRootBD*, const PluginChangeReport&)>;
using EditBdBlockSlot = std::function<void(BKRootBD*, BKBlock*)>;
using EditBdModelParameterSlot = std::function<void(BKRootBD*, const std::string&)>;
using CompBdSlot = std::function<void(BKCompBD*)>;
using ExecBdSlot = std::function<void(BKExecBD*)>;

/// Connects `slot` to edit event `event` (1 or 5 in practice) of `diagram`. Returns the
/// connection. Throws std::invalid_argument for a null diagram or an empty slot.
boost::signals2::connection addEditBdSignal(BKRootBD* diagram, BKGraphicalEvent event,
                                            EditBdSlot slot);
/// Connects `slot` to batch event `event` (26, 27, 28 or 33) of `diagram`. Fails as above.
boost::signals2::connection addEditBdBatchSignal(BKRootBD* diagram, BKGraphicalEvent event,
                                                 EditBdBatchSlot slot);
/// Connects `slot` to comment event `event` (22, 23 or 24) of `diagram`. Fails as above.
boost::signals2::connection addEditBdBlockCommentedStatusSignal(BKRootBD* diagram,
                                                                BKGraphicalEvent event,
                                                                EditBdBlockSlot slot);
/// Connects `slot` to the model parameter event (41) of `diagram`. Fails as above.
boost::signals2::connection addEditBdModelParameterSignal(BKRootBD* diagram,
                                                          BKGraphicalEvent event,
                                                          EditBdModelParameterSlot slot);
/// Connects `slot` to compile event `event` of the compiled diagram. Fails as above.
boost::signals2::connection addCompBdSignal(BKCompBD* diagram, BKCompEvent event,
                                            CompBdSlot slot);
/// Connects `slot` to execution event `event` of the executing diagram. Fails as above.
boost::signals2::connection addExecBdSignal(BKExecBD* diagram, BKExecEvent event,
                                            ExecBdSlot slot);

/// Host side: raises edit event `event` of `diagram` to its slots, in connection order.
void raiseEditBdSignal(BKRootBD* diagram, BKGraphicalEvent event);
/// Host side: raises batch event `event` with `report`.
void raiseEditBdBatchSignal(BKRootBD* diagram, BKGraphicalEvent event,
                            const PluginChangeReport& report);
/// Host side: raises comment event `event` for `block`.
void raiseEditBdBlockCommentedStatusSignal(BKRootBD* diagram, BKGraphicalEvent event,
                                           BKBlock* block);
/// Host side: raises the model parameter event for parameter `name`.
void raiseEditBdModelParameterSignal(BKRootBD* diagram, BKGraphicalEvent event,
                                     const std::string& name);
/// Host side: raises compile event `event`.
void raiseCompBdSignal(BKCompBD* diagram, BKCompEvent event);
/// Host side: raises execution event `event`.
void raiseExecBdSignal(BKExecBD* diagram, BKExecEvent event);

/// Host side: disconnects and forgets every signal kept for the diagram side `side` (a
/// `BKRootBD`, `BKCompBD` or `BKExecBD`); called when that side is destroyed.
void dropSignals(const void* side);

/// How many slots are connected to `event` of `side` (any of the three kinds); for tests.
std::size_t slotCount(const void* side, int event);

}  // namespace bkplugin
