#include "app/findings.h"

#include <algorithm>
#include <cstdio>

namespace blockara::app {

std::string categoryOfSeverity(unsigned severity) {
  switch (severity) {
    case 1: return "EDITTIME_ERROR";
    case 3: return "RAWARNING";
    case 4: return "RAERROR";
    default: return "EDITTIME_WARNING";
  }
}

bool isErrorCategory(const std::string& category) {
  return category == "EDITTIME_ERROR" || category == "RAERROR";
}

std::string textEscape(const std::string& text) {
  std::string out;
  out.reserve(text.size());
  for (unsigned char c : text) {
    switch (c) {
      case '\\': out += "\\\\"; break;
      case '\t': out += "\\t"; break;
      case '\n': out += "\\n"; break;
      case '\r': out += "\\r"; break;
      default:
        if (c < 0x20) {
          char buf[8];
          std::snprintf(buf, sizeof buf, "\\x%02X", c);
          out += buf;
        } else {
          out += static_cast<char>(c);
        }
    }
  }
  return out;
}

std::string formatText(std::vector<Finding> findings) {
  std::sort(findings.begin(), findings.end());
  std::string out;
  for (const Finding& f : findings) {
    if (f.exempt) continue;
    for (const std::string* field : {&f.path, &f.checkId, &f.type, &f.category, &f.message}) {
      out += textEscape(*field) + '\t';
    }
    out += textEscape(f.hint) + '\n';
  }
  return out;
}

std::string jsonEscape(const std::string& text) {
  std::string out;
  out.reserve(text.size());
  for (unsigned char c : text) {
    switch (c) {
      case '"': out += "\\\""; break;
      case '\\': out += "\\\\"; break;
      case '\n': out += "\\n"; break;
      case '\r': out += "\\r"; break;
      case '\t': out += "\\t"; break;
      default:
        if (c < 0x20) {
          char buf[8];
          std::snprintf(buf, sizeof buf, "\\u%04x", c);
          out += buf;
        } else {
          out += static_cast<char>(c);
        }
    }
  }
  return out;
}

std::string htmlEscape(const std::string& text) {
  std::string out;
  out.reserve(text.size());
  for (char c : text) {
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"': out += "&quot;"; break;
      case '\'': out += "&#39;"; break;
      case '\t':
      case '\n':
      case '\r': out += c; break;
      default:
        // HTML admits no other control character, not even as a reference: show it as the
        // text report does.
        if (static_cast<unsigned char>(c) < 0x20) {
          char buf[8];
          std::snprintf(buf, sizeof buf, "\\x%02X", static_cast<unsigned char>(c));
          out += buf;
        } else {
          out += c;
        }
    }
  }
  return out;
}

}  // namespace blockara::app
