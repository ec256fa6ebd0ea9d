#pragma once

#include <string>

/// The host's well-known directories. Both start from a default and may be replaced by the
/// program (its `--prefdir` and `--root` options) or by scripts.
///
/// Thread contract: any thread; a mutex in the source guards both settings.

/// Any thread. The user's preferences directory, narrow (UTF-8). `kind` is accepted for the
/// callers' sake and has no effect: the user's directory is the only one the host keeps. The
/// default is `$XDG_CONFIG_HOME/blockara`, else `$HOME/.config/blockara`, else `./blockara`. The
/// directory need not exist.
std::string svGetPreferencesDirectory(int kind);

/// Any thread. Replaces the preferences directory. Throws `std::invalid_argument` for an empty
/// path; the previous directory then stays.
void svSetPreferencesDirectory(const std::string& directory);

/// Any thread. The installation root, narrow (UTF-8): where the built-in library, the installed
/// customization file and the host-language modules lie. Default: the one the build provides.
std::string svNumeriaRoot();

/// Any thread. Replaces the installation root. Throws `std::invalid_argument` for an empty
/// path; the previous root then stays.
void svSetNumeriaRoot(const std::string& root);
