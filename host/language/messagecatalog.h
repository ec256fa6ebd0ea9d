#pragma once

#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace bkmsg {

/// The message catalogue: English texts by full identifier ("component:mnemonic"), read from an
/// XML file of the form
///   <catalogue><component name="bkedittimecheck:edittimecheck">
///     <message id="UnsupportedValueOperator">Unsupported value operator '{0}'.</message>
///   </component></catalogue>
/// `{0}`, `{1}`, ... in a text stand for the arguments. Thread-safe: `mutex` guards `texts`.
class MessageCatalog {
 public:
  /// The process-wide catalogue. On first use it loads `messages.xml` from the directory named by
  /// the environment variable BLOCKARA_ROOT, else from the build's resource directory, if found.
  static MessageCatalog& instance();

  MessageCatalog(const MessageCatalog&) = delete;
  MessageCatalog& operator=(const MessageCatalog&) = delete;

  /// Adds the texts of a catalogue file (later files win). Throws std::runtime_error naming the
  /// file and the problem when it cannot be read or parsed; nothing is added then.
  void load(const std::filesystem::path& file);
  /// The raw text, or empty when the identifier is unknown.
  std::string text(const std::string& identifier) const;
  /// True when the identifier has a text.
  bool contains(const std::string& identifier) const;
  /// The text with `{n}` replaced by argument n; an unknown identifier gives the arguments
  /// joined by ", ". A `{n}` beyond the arguments stays as written.
  std::string format(const std::string& identifier, const std::vector<std::string>& args) const;
  /// Every identifier with a text.
  std::vector<std::string> identifiers() const;

  /// Substitutes `{n}` in `pattern` (exposed for tests).
  static std::string substitute(const std::string& pattern, const std::vector<std::string>& args);

 private:
  MessageCatalog() = default;

  mutable std::mutex mutex;
  std::map<std::string, std::string> texts;  // guarded by mutex
};

}  // namespace bkmsg
