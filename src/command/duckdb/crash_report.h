// What a system does with a program that crashes.
#pragma once

namespace command {

/// From now on a crash of this process leaves no memory image on the disk and shows no box on the screen.
void crash_in_silence() noexcept;

}  // namespace command
