#pragma once

#include <string>

class BKRootBD;

namespace blockara {
class LuaHost;
}

namespace blockara::app {

/// Installs the scripting API of the program in `host`: the `blockara` table with its calls and
/// `blockara.workspace`, and the Diagram and Block types. Then runs the Lua prelude
/// `blockara.prelude` from the module path, which adds the calls that go through the engine's
/// controller class. Throws std::runtime_error when the prelude fails. Main thread.
void installLuaApi(LuaHost& host);

/// Opens `diagram` for editing the way every script-made or loaded diagram is opened: registers
/// its edit, compile and execution sides with the module, opens one editor on its root system
/// and raises edit signal 1. Main thread.
void openForEditing(::BKRootBD* diagram);

/// Loads a `.bkd` or `.bkdx` model (by extension) without opening it for editing. Throws
/// blockara::ModelFileError or bksPackageHelper::PackageError naming the file. Main thread.
::BKRootBD* loadModelFile(const std::string& path);

/// Saves `diagram` as `.bkd` or `.bkdx` by the extension of `path`. Throws as the writers do.
void saveModelFile(::BKRootBD& diagram, const std::string& path);

}  // namespace blockara::app
