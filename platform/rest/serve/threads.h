#pragma once

#include <functional>
#include <string>
#include <thread>

namespace zuva::serve {

/// Starts a thread with all signals blocked, since signals belong to the application. The name is cut to the system's 15 characters.
/// Throws `std::system_error` if there is no thread to be had.
std::thread StartThread(const std::string& name, std::function<void()> body);

}  // namespace zuva::serve
