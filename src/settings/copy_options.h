#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace coffrelune {

/// The options that hold for every configuration; non-zero is on (-1 as stored).
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
    std::int32_t DatesArrondies = 0;
};

inline constexpr std::size_t boxCount = 9;
inline constexpr std::size_t noBox = boxCount;

/// One of them: under which key it is stored, and which check box of the options shows it.
struct CopyOption {
    const char* key;
    std::int32_t CopyOptions::*value;
    std::size_t box;  // index in ConfigForm::Opt; noBox: the user meets it where it matters
    const char* caption;
};

/// In the order in which a new settings file gets them.
inline constexpr std::array<CopyOption, 10> optionTable = {{
    {"RecentSeul", &CopyOptions::RecentSeul, 0, "Copie seulement les fichiers plus &récents:"},
    {"DelReadOnly", &CopyOptions::DelReadOnly, 1,
     "Efface l'attribut '&Lecture seule' pendant la copie:"},
    {"ContinueOnError", &CopyOptions::ContinueOnError, 5, "Continuer la copie en cas d'erreur:"},
    {"SynchroCopie", &CopyOptions::SynchroCopie, 8,
     "Efface les fichiers excédentaires sur la destination:"},
    {"AltCopie", &CopyOptions::AltCopie, 6, "Mode de copie alternative:"},
    {"CorrectEteOff", &CopyOptions::CorrectEteOff, 7, "Désactive la correction Heure d'été:"},
    {"SynchroDate", &CopyOptions::SynchroDate, 4,
     "Synchronise la date des fichiers pendant la copie:"},
    {"ArbreMode", &CopyOptions::ArbreMode, 2, "Copie seulement l'&arborescence des répertoires:"},
    {"SignalSonore", &CopyOptions::SignalSonore, 3,
     "Emettre un signal &sonore à la fin de la copie:"},
    {"DatesArrondies", &CopyOptions::DatesArrondies, noBox,
     "Accepte les dates arrondies par le volume de la copie:"},
}};
inline constexpr const CopyOption& roundedDatesOption = optionTable.back();

}  // namespace coffrelune
