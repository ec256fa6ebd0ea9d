#pragma once

#include <map>
#include <memory>
#include <string>

#include "host/model/bkblock.h"

/// What a failed lookup of the graphical-class context leaves: identifier and message.
struct BkGrDiagnostic {
  std::string identifier;
  std::string message;
};

/// The host's context of graphical classes: resolves library paths such as "built-in/Gain" to
/// the library's own block object of that type.
///
/// Thread contract: main thread only. The library blocks it hands out live as long as the
/// process and are never inserted into a diagram.
class BkGrContext {
 public:
  /// Kind codes of a lookup: nothing found, and a built-in block.
  static constexpr int kindNone = 1;
  static constexpr int kindBlock = 8;

  struct Lookup {
    std::shared_ptr<BkGrDiagnostic> diagnostic;  ///< null when the lookup itself went well
    int kind = kindNone;                         ///< what was found
    BKBlock* object = nullptr;                   ///< the library block for kind 8
  };

  BkGrContext() = default;
  BkGrContext(const BkGrContext&) = delete;
  BkGrContext& operator=(const BkGrContext&) = delete;

  /// Looks `path` up among the objects whose kind is `kindFilter` (8: built-in blocks). A path
  /// "built-in/<Type>" of a library type gives kind 8 and its library block; any other path of
  /// that form gives kind 1. An empty path, or a filter other than 8, gives a diagnostic
  /// "blockara:model:InvalidLookup". The library is read on first use (std::runtime_error when it
  /// cannot be).
  Lookup lookupObject(const std::string& path, int kindFilter);

 private:
  std::map<std::string, std::unique_ptr<BKBlock>> libraryBlocks;  // by type name
};

/// Access to the graphical-class context, as the host offers it.
class BkGrClasses {
 public:
  /// The context, or null while the host is not started. The reference host starts with the
  /// process, so that this is never null here. Main thread.
  static BkGrContext* GetBKContext();
};
