#pragma once
// The faults of a poor line that the simulated analyser can put on its
// replies, so that the console's repair and reassembly can be seen at work.

#include <random>
#include <string>
#include <vector>

namespace sim {

// Damages the line ends of blank lines (CR LF CR LF) in a text stream, in
// turn into CR LF LF, CR CR blank and CR LF CR (each closed by one stray
// character), the three forms the console repairs by writing CR LF CR LF
// over them. About every second blank line is hit; the text keeps its length.
std::string damage_line_ends(std::string text, std::mt19937_64& random);

// Cuts a reply into the pieces it reaches the line in: several for a short
// reply, and about one per hundred characters for a long one.
std::vector<std::string> split_into_pieces(const std::string& text, std::mt19937_64& random);

}  // namespace sim
