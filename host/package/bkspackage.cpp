#include "host/package/bkspackage.h"

#include <zip.h>

#include <cstdlib>
#include <fstream>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace bksPackageHelper {

namespace {

std::string zipErrorText(zip_error_t* error) {
  std::string text = zip_error_strerror(error);
  return text;
}

void checkPartName(const std::filesystem::path& path, const std::string& name) {
  bool bad = name.size() < 2 || name[0] != '/';
  std::size_t start = 1;
  while (!bad && start <= name.size()) {
    std::size_t slash = name.find('/', start);
    std::string segment = name.substr(start, slash == std::string::npos ? std::string::npos : slash - start);
    if (segment.empty() || segment == "." || segment == "..") bad = true;
    if (slash == std::string::npos) break;
    start = slash + 1;
  }
  if (bad) {
    throw PackageError(path.string() + ": invalid part name '" + name +
                       "' (it must begin with '/' and have no empty, '.' or '..' segment)");
  }
}

/// Reads every entry of an open archive; closes it in all cases.
PartMap readArchive(zip_t* archive, const std::string& label) {
  struct Closer {
    zip_t* z;
    ~Closer() { zip_discard(z); }
  } closer{archive};
  PartMap parts;
  zip_int64_t count = zip_get_num_entries(archive, 0);
  for (zip_int64_t i = 0; i < count; ++i) {
    zip_stat_t st;
    zip_stat_init(&st);
    if (zip_stat_index(archive, static_cast<zip_uint64_t>(i), 0, &st) != 0 || !(st.valid & ZIP_STAT_NAME)) {
      throw PackageError(label + ": damaged entry " + std::to_string(i) + ": " +
                         zip_strerror(archive));
    }
    std::string name = st.name;
    if (!name.empty() && name.back() == '/') continue;  // a folder entry holds no part
    if ((st.valid & ZIP_STAT_SIZE) && st.size > maxPartBytes) {
      throw PackageError(label + ": part '/" + name + "' is larger than the reader accepts");
    }
    zip_file_t* file = zip_fopen_index(archive, static_cast<zip_uint64_t>(i), 0);
    if (!file) {
      throw PackageError(label + ": cannot open part '/" + name + "': " + zip_strerror(archive));
    }
    std::string bytes;
    char buffer[65536];
    while (true) {
      zip_int64_t n = zip_fread(file, buffer, sizeof buffer);
      if (n < 0) {
        std::string why = zip_file_strerror(file);
        zip_fclose(file);
        throw PackageError(label + ": part '/" + name + "' is damaged: " + why);
      }
      if (n == 0) break;
      bytes.append(buffer, static_cast<std::size_t>(n));
      if (bytes.size() > maxPartBytes) {
        zip_fclose(file);
        throw PackageError(label + ": part '/" + name + "' is larger than the reader accepts");
      }
    }
    if (zip_fclose(file) != 0) {
      throw PackageError(label + ": part '/" + name + "' is damaged (checksum)");
    }
    parts["/" + name] = std::move(bytes);
  }
  return parts;
}

}  // namespace

PartMap readPackage(const std::filesystem::path& path) {
  int code = 0;
  zip_t* archive = zip_open(path.string().c_str(), ZIP_RDONLY | ZIP_CHECKCONS, &code);
  if (!archive) {
    zip_error_t error;
    zip_error_init_with_code(&error, code);
    std::string text = zipErrorText(&error);
    zip_error_fini(&error);
    throw PackageError(path.string() + ": not a readable package: " + text);
  }
  return readArchive(archive, path.string());
}

PartMap readPackageFromBuffer(const std::uint8_t* data, std::size_t size, const std::string& label) {
  // libzip takes no bytes at all for an empty archive; a package file of no bytes is refused,
  // and so are no bytes in memory.
  if (size == 0) throw PackageError(label + ": not a readable package: it has no bytes");
  zip_error_t error;
  zip_error_init(&error);
  zip_source_t* source = zip_source_buffer_create(data, size, 0, &error);
  if (!source) {
    std::string text = zipErrorText(&error);
    zip_error_fini(&error);
    throw PackageError(label + ": " + text);
  }
  zip_t* archive = zip_open_from_source(source, ZIP_RDONLY | ZIP_CHECKCONS, &error);
  if (!archive) {
    zip_source_free(source);
    std::string text = zipErrorText(&error);
    zip_error_fini(&error);
    throw PackageError(label + ": not a readable package: " + text);
  }
  zip_error_fini(&error);
  return readArchive(archive, label);
}

void writePackage(const std::filesystem::path& path, const PartMap& parts) {
  for (const auto& [name, bytes] : parts) checkPartName(path, name);
  std::filesystem::path dir = path.parent_path().empty() ? "." : path.parent_path();
  std::string pattern = (dir / ("." + path.filename().string() + ".XXXXXX")).string();
  std::vector<char> temp(pattern.begin(), pattern.end());
  temp.push_back('\0');
  int fd = mkstemp(temp.data());
  if (fd < 0) throw PackageError(path.string() + ": cannot create a temporary file in " + dir.string());
  // mkstemp makes the file private; the package gets the permissions of the file it replaces,
  // or those of any new file.
  struct stat existing;
  if (::stat(path.c_str(), &existing) == 0 && S_ISREG(existing.st_mode)) {
    ::fchmod(fd, existing.st_mode & 07777);
  } else {
    mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(fd, 0666 & ~mask);
  }
  close(fd);
  std::filesystem::path tempPath(temp.data());
  auto discard = [&] {
    std::error_code ec;
    std::filesystem::remove(tempPath, ec);
  };
  int code = 0;
  zip_t* archive = zip_open(tempPath.string().c_str(), ZIP_TRUNCATE, &code);
  if (!archive) {
    discard();
    throw PackageError(path.string() + ": cannot write the package (libzip error " + std::to_string(code) + ")");
  }
  for (const auto& [name, bytes] : parts) {
    // The archive reads the bytes when it is closed; `parts` outlives that.
    zip_source_t* source = zip_source_buffer(archive, bytes.data(), bytes.size(), 0);
    if (!source || zip_file_add(archive, name.c_str() + 1, source, ZIP_FL_ENC_UTF_8) < 0) {
      std::string why = zip_strerror(archive);
      if (source) zip_source_free(source);
      zip_discard(archive);
      discard();
      throw PackageError(path.string() + ": cannot add part '" + name + "': " + why);
    }
  }
  if (zip_close(archive) != 0) {
    std::string why = zip_strerror(archive);
    zip_discard(archive);
    discard();
    throw PackageError(path.string() + ": cannot write the package: " + why);
  }
  if (parts.empty()) {
    // libzip writes no file for an empty archive: write the empty archive's end record.
    static const char emptyZip[22] = {'P', 'K', 5, 6};
    std::ofstream out(tempPath, std::ios::binary | std::ios::trunc);
    out.write(emptyZip, sizeof emptyZip);
    if (!out) {
      discard();
      throw PackageError(path.string() + ": cannot write the package");
    }
  }
  std::error_code ec;
  std::filesystem::rename(tempPath, path, ec);
  if (ec) {
    discard();
    throw PackageError(path.string() + ": cannot replace the file: " + ec.message());
  }
}

PackageReader::PackageReader(const std::filesystem::path& path) : file(path), partMap(readPackage(path)) {}

PackageReader::PackageReader(std::filesystem::path path, PartMap parts)
    : file(std::move(path)), partMap(std::move(parts)) {}

bool PackageReader::hasPart(const std::string& partName) const { return partMap.count(partName) > 0; }

const std::string& PackageReader::partBytes(const std::string& partName) const {
  auto it = partMap.find(partName);
  if (it == partMap.end()) throw PackageError(file.string() + ": no part '" + partName + "'");
  return it->second;
}

std::vector<std::string> PackageReader::partNames() const {
  std::vector<std::string> names;
  for (const auto& [name, bytes] : partMap) names.push_back(name);
  return names;
}

namespace reader {
void partToFile(const PackageReader& reader, const std::string& partName,
                const std::filesystem::path& file) {
  const std::string& bytes = reader.partBytes(partName);
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.close();
  if (!out) throw PackageError(file.string() + ": cannot write part '" + partName + "'");
}
}  // namespace reader

std::filesystem::path makeTemporaryFile(const std::string& suffix) {
  std::error_code ec;
  std::filesystem::path dir = std::filesystem::temp_directory_path(ec);
  if (ec) dir = "/tmp";
  std::string pattern = (dir / "blockara-XXXXXX").string() + suffix;
  std::vector<char> name(pattern.begin(), pattern.end());
  name.push_back('\0');
  int fd = mkstemps(name.data(), static_cast<int>(suffix.size()));
  if (fd < 0) throw PackageError(dir.string() + ": cannot create a temporary file");
  close(fd);
  return std::filesystem::path(name.data());
}

}  // namespace bksPackageHelper
