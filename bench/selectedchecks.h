#pragma once
// The per-block checks the benchmarks select, every one the rule auditor offers.
namespace bkedittimecheck::bench {

inline const char* const kSelectedChecks[] = {
    "orvanta.kabe.kb_0401",       "orvanta.kabe.kb_0402",          "orvanta.kabe.kb_0403",
    "orvanta.kabe.kb_0404",       "orvanta.kabe.kb_0405",          "orvanta.kabe.kb_0406",
    "orvanta.kabe.kb_0407",       "orvanta.kabe.kb_0408",          "orvanta.codegen.PCGSupport",
    "orvanta.codegen.BlockNames", "orvanta.bkci.UnsupportedBlocks"};

}  // namespace bkedittimecheck::bench
