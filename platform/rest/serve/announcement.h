#pragma once

#include <string>
#include <vector>

#include "zuva/server_service.h"

namespace zuva::serve {

/// What the registry is told of a service, as JSON: name, id, uris, versions, description.
///
/// `own` are the server's addresses, as "http://host:port". A URI that lacks a scheme or a port takes that of the first of them; the
/// service's path follows. Without any URI the service is at the server's own addresses.
std::string AnnouncementOf(const ServerService& service, const std::vector<std::string>& uris, const std::vector<std::string>& own);

}  // namespace zuva::serve
