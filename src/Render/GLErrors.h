#pragma once

#include <string>

namespace trelmix {

/// Takes the errors that wait in the current context, so that a later question finds only its own.
void forgetErrors();

/// The first error that waits, by its name ("GL_OUT_OF_MEMORY"); empty when there is none. Takes them all.
std::string takeError();

} // namespace trelmix
