#pragma once

class BKRootBD;
class BKCompBD;
class BKExecBD;

/// Main thread, once after the library is loaded: registers the host-language package
/// "bkedittimecheck" and the "Auditor.authoring" packages. A failing registration propagates.
extern "C" void initialize_module();

/// Main thread, once before unload: drops the package "bkedittimecheck" from the host language.
/// Does nothing when it is not registered. Engines end with the process, not here.
extern "C" void terminate_module();

/// Main thread. Connects the edit-side handlers of a diagram: events 1 and 5 for every diagram;
/// the batch, comment and model-parameter handlers for a model only.
void RegisterEditBdEvents(BKRootBD* diagram);

/// Main thread. Connects the compile-side handlers (1, 35, 34, 33).
void RegisterCompBdEvents(BKCompBD* diagram);

/// Main thread. Connects the execution-side handlers (2, 5).
void RegisterExecPlugins(BKExecBD* diagram);
