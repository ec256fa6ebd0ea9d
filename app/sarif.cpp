#include "app/sarif.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "app/findingtext.h"

namespace blockara::app {

namespace {

namespace fs = std::filesystem;

constexpr const char* kRootId = "SRCROOT";

// Where the log points for the model: a URI and, when the model lies below the source root, the
// base id it is relative to.
struct ArtifactUri {
  std::string uri;
  bool relative = false;
  std::string rootUri;
};

ArtifactUri artifactUri(const std::string& artifact, const std::string& sourceRoot) {
  std::error_code error;
  const fs::path root = fs::weakly_canonical(
      fs::absolute(sourceRoot.empty() ? fs::current_path(error) : fs::path(sourceRoot)), error);
  const fs::path model = fs::weakly_canonical(fs::absolute(artifact), error);
  const fs::path relative = model.lexically_relative(root);
  ArtifactUri out;
  out.rootUri = "file://" + uriEncode(root.generic_string());
  if (out.rootUri.back() != '/') out.rootUri += '/';
  if (!relative.empty() && *relative.begin() != "..") {
    out.uri = uriEncode(relative.generic_string());
    out.relative = true;
  } else {
    out.uri = "file://" + uriEncode(model.generic_string());
  }
  return out;
}

// The line of each block element of a `.bkd` file by SID; empty for packages or an unreadable
// file. The writer and the hand-written examples put one element's start tag on one line.
std::map<std::string, int> blockLines(const std::string& file) {
  std::map<std::string, int> lines;
  if (fs::path(file).extension() != ".bkd") return lines;
  std::ifstream in(file, std::ios::binary);
  std::string line;
  for (int number = 1; std::getline(in, line); ++number) {
    for (std::size_t at = line.find("<Block "); at != std::string::npos;
         at = line.find("<Block ", at + 1)) {
      const std::size_t sid = line.find(" SID=\"", at);
      const std::size_t end = sid == std::string::npos ? sid : line.find('"', sid + 6);
      if (end != std::string::npos) lines.emplace(line.substr(sid + 6, end - sid - 6), number);
    }
  }
  return lines;
}

std::string text(const std::string& value) { return "{\"text\": \"" + jsonEscape(value) + "\"}"; }

const char* levelOf(const Finding& f) { return isErrorCategory(f.category) ? "error" : "warning"; }

}  // namespace

std::string utcTimestamp(std::chrono::system_clock::time_point time) {
  const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch());
  const std::time_t seconds = static_cast<std::time_t>(ms.count() / 1000);
  std::tm utc{};
  gmtime_r(&seconds, &utc);
  char buf[96];
  std::snprintf(buf, sizeof buf, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", utc.tm_year + 1900,
                utc.tm_mon + 1, utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec,
                static_cast<int>(ms.count() % 1000));
  return buf;
}

std::string uriEncode(const std::string& path) {
  std::string out;
  for (unsigned char c : path) {
    if (std::isalnum(c) || c == '-' || c == '.' || c == '_' || c == '~' || c == '/') {
      out += static_cast<char>(c);
    } else {
      char buf[4];
      std::snprintf(buf, sizeof buf, "%%%02X", c);
      out += buf;
    }
  }
  return out;
}

std::string formatSarif(std::vector<Finding> findings, const SarifRun& run) {
  std::sort(findings.begin(), findings.end());
  std::map<std::string, std::size_t> ruleIndex;
  for (const Finding& f : findings) ruleIndex.emplace(f.checkId, 0);
  std::size_t next = 0;
  for (auto& [id, index] : ruleIndex) index = next++;
  const ArtifactUri where = artifactUri(run.artifact, run.sourceRoot);
  const std::map<std::string, int> lines = blockLines(run.artifact);

  std::ostringstream out;
  out << "{\n  \"$schema\": \"https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/"
         "sarif-schema-2.1.0.json\",\n  \"version\": \"2.1.0\",\n  \"runs\": [{\n"
      << "    \"tool\": {\"driver\": {\"name\": \"bkedittimecheck\", \"version\": \""
      << BKETC_VERSION << "\", \"semanticVersion\": \"" << BKETC_VERSION << "\", \"rules\": [";
  const char* sep = "";
  for (const auto& [id, index] : ruleIndex) {
    const RuleText rule = describeRule(id);
    out << sep << "\n      {\"id\": \"" << jsonEscape(id) << "\", \"shortDescription\": "
        << text(rule.shortDescription) << ", \"fullDescription\": " << text(rule.fullDescription)
        << ", \"defaultConfiguration\": {\"level\": \"" << rule.level << "\"}}";
    sep = ",";
  }
  out << "\n    ]}},\n";
  if (where.relative) {
    out << "    \"originalUriBaseIds\": {\"" << kRootId << "\": {\"uri\": \""
        << jsonEscape(where.rootUri) << "\"}},\n";
  }
  out << "    \"invocations\": [{\"executionSuccessful\": true";
  if (run.exitCode) out << ", \"exitCode\": " << *run.exitCode;
  out << ", \"startTimeUtc\": \"" << utcTimestamp(run.start) << "\", \"endTimeUtc\": \""
      << utcTimestamp(run.end) << "\"";
  if (!run.arguments.empty()) {
    out << ", \"arguments\": [";
    sep = "";
    for (const std::string& a : run.arguments) {
      out << sep << '"' << jsonEscape(a) << '"';
      sep = ", ";
    }
    out << "]";
  }
  if (!run.warnings.empty()) {
    out << ", \"toolConfigurationNotifications\": [";
    sep = "";
    for (const std::string& w : run.warnings) {
      out << sep << "\n      {\"level\": \"warning\", \"message\": " << text(w) << "}";
      sep = ",";
    }
    out << "]";
  }
  out << "}],\n    \"results\": [";
  sep = "";
  for (const Finding& f : findings) {
    out << sep << "\n      {\"ruleId\": \"" << jsonEscape(f.checkId)
        << "\", \"ruleIndex\": " << ruleIndex.at(f.checkId) << ", \"level\": \"" << levelOf(f)
        << "\", \"message\": " << text(f.message + (f.hint.empty() ? "" : " " + f.hint))
        << ", \"locations\": [{\"physicalLocation\": {\"artifactLocation\": {\"uri\": \""
        << jsonEscape(where.uri) << '"';
    if (where.relative) out << ", \"uriBaseId\": \"" << kRootId << '"';
    out << '}';
    if (auto line = lines.find(f.sid); line != lines.end()) {
      out << ", \"region\": {\"startLine\": " << line->second << '}';
    }
    out << "}, \"logicalLocations\": [{\"fullyQualifiedName\": \"" << jsonEscape(f.path)
        << "\", \"kind\": \"object\"}]}], \"suppressions\": [";
    if (f.exempt) {
      out << "{\"kind\": \"external\", \"justification\": \"" << jsonEscape(f.rationale) << "\"}";
    }
    out << "], \"properties\": {\"category\": \"" << jsonEscape(f.category) << "\"}}";
    sep = ",";
  }
  out << "\n    ]\n  }]\n}\n";
  return out.str();
}

}  // namespace blockara::app
