#pragma once

namespace coffrelune {

/// What is said then, and the exit status of a run that was interrupted.
inline constexpr char outOfMemory[] =
    "La mémoire ne suffit pas : le programme s'arrête. Aucun fichier n'est perdu ; la prochaine "
    "opération finira celle-ci.\n";
inline constexpr int outOfMemoryStatus = 3;

/// From here on a process that gets no more memory says so and ends at once, in whatever thread.
/// Files are whole under their names at every moment, so that nothing has to be unwound, which
/// would ask for memory itself.
void endWhenMemoryEnds();

}  // namespace coffrelune
