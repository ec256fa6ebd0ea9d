#pragma once

#include <functional>
#include <stdexcept>
#include <string>

class BKRootBD;

namespace blockara {

/// A model file that cannot be read. The message names the file, the line where known, and the
/// problem: "FILE:LINE: PROBLEM" or "FILE: PROBLEM".
class ModelFileError : public std::runtime_error {
 public:
  ModelFileError(const std::string& file, int line, const std::string& problem);
  const std::string& file() const { return fileName; }
  int line() const { return lineNumber; }  ///< 0 when unknown

 private:
  std::string fileName;
  int lineNumber;
};

/// The diagram as `.bkd` XML text (blocks, parameters, properties, positions, configuration
/// sets, edit parameters, exclusion file path). Package parts are not included. Main thread.
std::string writeDiagramXml(const BKRootBD& diagram);

/// Reads `.bkd` XML text and opens the diagram it describes (in `bkBlockDiagramSet`, with no
/// signal raised and an empty undo history). `origin` names the source in errors. Throws
/// ModelFileError on malformed text or content (unknown block type, duplicate name, bad value,
/// an element given twice where one is read, a diagram of that name already open); nothing is
/// left open then. Once the diagram is open, each kind of content passed over (unknown
/// elements and attributes, stray text) is reported once to the warning handler. Main thread.
BKRootBD* readDiagramXml(const std::string& xml, const std::string& origin);

/// Main thread. Where the model reader's warnings go, one call per line
/// "FILE:LINE: warning: PROBLEM[ (and N more like it)]". The default writes the line to standard
/// error.
void setModelFileWarningHandler(std::function<void(const std::string&)> handler);

/// Writes `diagram` to the `.bkd` file `path` and records the path on it. Throws ModelFileError
/// when the file cannot be written. Main thread.
void saveBkd(BKRootBD& diagram, const std::string& path);

/// Reads the `.bkd` file `path` and opens its diagram. Throws ModelFileError as
/// `readDiagramXml`, or when the file cannot be read. Main thread.
BKRootBD* loadBkd(const std::string& path);

}  // namespace blockara
