#pragma once

#include <string>
#include <vector>

namespace blockara::app {

/// One violation as the reports show it.
struct Finding {
  std::string path;      // the block's full path
  std::string checkId;   // e.g. "orvanta.kabe.kb_0402"
  std::string type;      // the violation type
  std::string category;  // "EDITTIME_ERROR", "RAWARNING", "RAERROR" or "EDITTIME_WARNING"
  std::string message;   // one sentence: the block and the offending value where known
  std::string hint;      // how to fix it, in a few words
  bool exempt = false;   // an exclusion holds this finding back from display and exit status
  std::string rationale;  // the rationale of that exclusion
  std::string sid;        // the block's SID, for finding its element in the model file

  friend bool operator==(const Finding&, const Finding&) = default;
  friend auto operator<=>(const Finding&, const Finding&) = default;
};

/// The diagnostic class name of a severity value: 1 "EDITTIME_ERROR", 3 "RAWARNING",
/// 4 "RAERROR", anything else "EDITTIME_WARNING".
std::string categoryOfSeverity(unsigned severity);

/// True for the categories that the reports show as errors.
bool isErrorCategory(const std::string& category);

/// `text` with backslash and the C0 control characters escaped, so that it fits on one line and
/// in one tab-separated field: `\\`, `\t`, `\n`, `\r`, and `\xNN` (two upper-case hex digits)
/// for the others. Other bytes, UTF-8 included, pass unchanged.
std::string textEscape(const std::string& text);

/// One line per finding that is not exempt,
/// `PATH<TAB>CHECK_ID<TAB>TYPE<TAB>CATEGORY<TAB>MESSAGE<TAB>HINT`, each field `textEscape`d,
/// sorted.
std::string formatText(std::vector<Finding> findings);

/// `text` with the characters that JSON strings must escape escaped (no quotes added).
std::string jsonEscape(const std::string& text);

/// `text` with the characters that HTML text and attributes must escape escaped; control
/// characters other than tab, newline and carriage return, which HTML does not admit, are
/// shown as `\xNN`.
std::string htmlEscape(const std::string& text);

}  // namespace blockara::app
