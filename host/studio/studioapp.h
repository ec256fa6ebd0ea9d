#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "host/model/bkrootbd.h"
#include "host/studio/connectionservice.h"

class bkGraph;

namespace Blockara {

class StudioApp;
class Editor;

/// Raised by a studio when its active editor changes.
struct ActiveEditorChangedEvent {
  double diagramHandle = 0;  ///< the diagram of the studio
  Editor* previous = nullptr;  ///< the editor active before, or null
  Editor* current = nullptr;   ///< the editor active now, or null
};

/// A window that shows one system level of a diagram. Main thread only.
class Editor {
 public:
  Editor(StudioApp& studio, double ownerHandle);
  ~Editor();
  Editor(const Editor&) = delete;
  Editor& operator=(const Editor&) = delete;

  /// The graph shown, resolved afresh: the root system, or the system inside the owner block;
  /// null once that block has been deleted.
  bkGraph* getGraph() const;
  /// The handle of the block whose system is shown; 0 for the root system.
  double getOwnerHandle() const { return ownerHandle; }
  /// Whether the window is visible.
  bool isVisible() const { return visible; }
  void setVisible(bool on);
  /// The studio the editor belongs to.
  StudioApp& getStudio() const { return studio; }

 private:
  StudioApp& studio;
  double ownerHandle;
  bool visible = true;
};

/// The studio of one open diagram: its editors and which one is active.
///
/// Thread contract: main thread only. A studio lives from `open` until `close` or until its
/// diagram closes.
class StudioApp {
 public:
  explicit StudioApp(BKRootBD* diagram);
  ~StudioApp();
  StudioApp(const StudioApp&) = delete;
  StudioApp& operator=(const StudioApp&) = delete;

  /// The studios showing the diagram with handle `diagramHandle` (zero or one here).
  static std::vector<StudioApp*> getAllStudioAppsFor(double diagramHandle);
  /// Every editor of the diagram with handle `diagramHandle`, over all its studios.
  static std::vector<Editor*> getAllEditorsFor(double diagramHandle);
  /// A count that moves whenever a studio or editor opens or closes, an editor is shown or
  /// hidden, or the model's structure changes (`bkgg::structureRevision`): the graphs that
  /// `getAllEditorsFor` shows stay the same while it does.
  static std::uint64_t viewRevision();
  /// The studio of `diagram`, made if it has none. Throws std::invalid_argument for null.
  static StudioApp* open(BKRootBD* diagram);
  /// Closes the studio of `diagram`, if any, with all its editors. No event is raised.
  static void close(BKRootBD* diagram);

  /// The diagram shown, or null once it has closed.
  BKRootBD* getDiagram() const;
  /// The editors, in opening order.
  std::vector<Editor*> getEditors() const;
  /// The active editor, or null.
  Editor* getActiveEditor() const { return active; }

  /// Opens a new editor on the system at `systemPath` (the diagram name for the root) and makes
  /// it active, raising the active-editor-changed event. Throws std::invalid_argument naming the
  /// path when it is no system of the diagram.
  Editor* openEditor(const bksvString& systemPath);
  /// Opens an editor on each of `systemPaths`, as a user restoring a set of windows at once:
  /// only the last becomes active, so the event is raised once, not once per editor. Throws as
  /// `openEditor` on the first path that is no system, before opening any.
  void openEditors(const std::vector<bksvString>& systemPaths);
  /// Makes the first editor on `systemPath` active, opening one if there is none; raises the
  /// event when the active editor changes. Throws as `openEditor`.
  Editor* focus(const bksvString& systemPath);
  /// Closes the editors on `systemPath`; if the active one goes, the last remaining editor (or
  /// none) becomes active and the event is raised. Returns how many were closed.
  std::size_t closeEditors(const bksvString& systemPath);

  /// The active-editor-changed event service.
  connections::EventService<ActiveEditorChangedEvent>& activeEditorChangedEventService() {
    return events;
  }

 private:
  void activate(Editor* editor);
  double ownerHandleOf(const bksvString& systemPath) const;

  double diagramHandle;
  std::vector<std::unique_ptr<Editor>> editors;
  Editor* active = nullptr;
  connections::EventService<ActiveEditorChangedEvent> events;
};

}  // namespace Blockara
