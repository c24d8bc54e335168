#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace coffrelune {

/// The nine options that hold for every configuration; non-zero is on (-1 as stored).
struct CopyOptions {
    std::int32_t RecentSeul = 0;
    std::int32_t DelReadOnly = 0;
    std::int32_t ContinueOnError = 0;
    std::int32_t SynchroCopie = 0;
    std::int32_t AltCopie = 0;
    std::int32_t CorrectEteOff = 0;
    std::int32_t SynchroDate = 0;
    std::int32_t ArbreMode = 0;
    std::int32_t SignalSonore = 0;
};

/// One of them: under which key it is stored, and which check box of the options shows it.
struct CopyOption {
    const char* key;
    std::int32_t CopyOptions::*value;
    std::size_t box;  // index in ConfigForm::Opt
};

/// In the order in which a new settings file gets them.
inline constexpr std::array<CopyOption, 9> optionTable = {{
    {"RecentSeul", &CopyOptions::RecentSeul, 0},
    {"DelReadOnly", &CopyOptions::DelReadOnly, 1},
    {"ContinueOnError", &CopyOptions::ContinueOnError, 5},
    {"SynchroCopie", &CopyOptions::SynchroCopie, 8},
    {"AltCopie", &CopyOptions::AltCopie, 6},
    {"CorrectEteOff", &CopyOptions::CorrectEteOff, 7},
    {"SynchroDate", &CopyOptions::SynchroDate, 4},
    {"ArbreMode", &CopyOptions::ArbreMode, 2},
    {"SignalSonore", &CopyOptions::SignalSonore, 3},
}};

}  // namespace coffrelune
