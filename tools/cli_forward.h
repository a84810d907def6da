// The classes of CLI11 that declarations name. Its header costs a file some seconds, whatever it takes from there.
#pragma once

namespace CLI {
class App;
class Option;
}  // namespace CLI
