#pragma once

#include <memory>
#include <string>

#include "host/package/bkspackage.h"

class BKRootBD;

/// Loading and saving of whole diagrams, as `.bkd` files or `.bkdx` packages, and the package
/// view of an open diagram.
///
/// A package is a zip archive of parts: the diagram itself as the part "/diagram.bkd" (the `.bkd`
/// text) and the diagram's other parts (`BKRootBD::parts()`), such as "/auditor/exclusions.xml".
///
/// Thread contract: main thread only (diagrams are main-thread objects).
class bkBlockDiagramLoadSave {
 public:
  /// The part that holds the diagram itself.
  static constexpr const char* diagramPart = "/diagram.bkd";

  /// The load-save view of `diagram` (a light value; keep it no longer than the diagram). Throws
  /// std::invalid_argument for a null diagram.
  static bkBlockDiagramLoadSave get(BKRootBD* diagram);

  /// The diagram's package reader: its parts as they are now, read by the package reader; null
  /// when the diagram has no part, i.e. no package.
  std::shared_ptr<bksPackageHelper::PackageReader> getPackageReader() const;

  /// Opens the model in `path`, a `.bkdx` package or else a `.bkd` file, without raising any
  /// signal. Throws blockara::ModelFileError or bksPackageHelper::PackageError naming the file;
  /// nothing is left open then.
  static BKRootBD* load(const std::string& path);

  /// Writes `diagram` to `path`: a package for a `.bkdx` name, else a `.bkd` file; records the
  /// path on the diagram. A failed write leaves what was at `path` untouched (packages) or throws
  /// ModelFileError (files).
  static void save(BKRootBD& diagram, const std::string& path);

 private:
  explicit bkBlockDiagramLoadSave(BKRootBD* diagram) : diagram(diagram) {}
  BKRootBD* diagram;
};
