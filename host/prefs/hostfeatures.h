#pragma once

class BkFeature;

/// The host's own feature flags that the edit-time checker reads. Each is defined by the host
/// and exported as a pointer; read them through the flag (`getLevel`, `isOn`).

/// How the checker marks blocks that name a missing variable: below level 3 as errors, from 3 on
/// as warnings. Default level 1.
extern BkFeature* BKFEAT_ShowMissingVarsAtEditTime;
