#include "zuva/frontend.h"

#include <utility>

#include "serve/config.h"
#include "serve/web_server.h"
#include "zuva/logger.h"

namespace zuva {

std::unique_ptr<Frontend> MakeFrontend(Server& tree, const std::string& configPath) {
  try {
    return std::make_unique<serve::WebServer>(tree, serve::ReadConfig(configPath));
  } catch (const serve::ConfigError& e) {
    GetLogger().LogError() << "The configuration " << configPath << " is not usable: " << e;
    throw;
  }
}

}  // namespace zuva
