// The version of the libmpv the live preview plays through.
#pragma once

#include <QString>

namespace tavrelune {

// mpv's own version ("0.35.1") of the library loaded at run time; its client
// API version ("client API 2.1") when the library does not tell.
QString libmpvVersion();

}  // namespace tavrelune
