#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace bksPackageHelper {

/// The parts of a package by part name ("/diagram.xml", "/auditor/exclusions.xml"): bytes.
using PartMap = std::map<std::string, std::string>;

/// A package that cannot be read or written; the message names the file and the problem.
class PackageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Writes `parts` as a zip archive at `path`: into a fresh temporary file beside it, renamed
/// over `path` only when complete, so that a failure leaves whatever was at `path` untouched.
/// Part names must begin with "/" and name no empty, "." or ".." segment (PackageError
/// otherwise). Any thread (one writer a path).
void writePackage(const std::filesystem::path& path, const PartMap& parts);

/// Reads every part of the zip archive at `path`. Throws PackageError naming the file for a
/// missing, corrupt or truncated archive, a damaged part, or a part larger than
/// `maxPartBytes`. Any thread.
PartMap readPackage(const std::filesystem::path& path);

/// The same from bytes in memory; `label` names them in errors. Any thread.
PartMap readPackageFromBuffer(const std::uint8_t* data, std::size_t size, const std::string& label);

/// The largest part this reader accepts (256 MiB).
inline constexpr std::uint64_t maxPartBytes = 256ull << 20;

/// The package reader of a diagram: all parts read at open, so nothing stays half open.
/// Immutable after construction; any thread.
class PackageReader {
 public:
  /// Reads the package at `path` (PackageError as readPackage).
  explicit PackageReader(const std::filesystem::path& path);
  /// A reader over parts already in memory.
  PackageReader(std::filesystem::path path, PartMap parts);
  PackageReader(const PackageReader&) = delete;
  PackageReader& operator=(const PackageReader&) = delete;

  const std::filesystem::path& path() const { return file; }
  /// True when the package has a part of that name.
  bool hasPart(const std::string& partName) const;
  /// The bytes of a part; PackageError when there is none.
  const std::string& partBytes(const std::string& partName) const;
  /// The part names in order.
  std::vector<std::string> partNames() const;
  const PartMap& parts() const { return partMap; }

 private:
  std::filesystem::path file;
  PartMap partMap;
};

namespace reader {
/// Copies the bytes of part `partName` of `reader` to `file` (created or replaced). Throws
/// PackageError when there is no such part or the file cannot be written.
void partToFile(const PackageReader& reader, const std::string& partName,
                const std::filesystem::path& file);
}  // namespace reader

/// A fresh temporary file, made exclusively (so no other process can take the name) in the
/// system's temporary directory, empty, with the given suffix; returns its path. Throws
/// PackageError when it cannot be made. Any thread.
std::filesystem::path makeTemporaryFile(const std::string& suffix = "");

}  // namespace bksPackageHelper
