#pragma once

namespace vehicle {

/// Begins this process anew with the program and the arguments that it has, as after a power failure: sockets close without a word,
/// memory is gone. Standard input and output stay. Throws std::system_error if the system refuses.
[[noreturn]] void RestartProcess();

}  // namespace vehicle
