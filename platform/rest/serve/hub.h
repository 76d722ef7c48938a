#pragma once

#include <boost/asio/io_context.hpp>

#include "serve/clock_text.h"
#include "serve/config.h"
#include "serve/connection.h"
#include "serve/documents.h"
#include "serve/host_rules.h"
#include "serve/post_queue.h"
#include "serve/subscription_index.h"
#include "serve/tokens.h"
#include "zuva/server.h"

namespace zuva::serve {

/// What all connections of one running server share. I/O thread only.
struct Hub {
  Hub(Server& server, const Config& settings, boost::asio::io_context& context, RequestPool& pool, ChangeQueue& queue, Documents* files)
      : tree{server},
        config{settings},
        io{context},
        rules{settings},
        tokens{settings},
        documents{files},
        posts{context, pool, settings.limits.queuedRequests},
        subscriptions{queue} {}

  Server& tree;
  const Config& config;
  boost::asio::io_context& io;
  const HostRules rules;
  const Tokens tokens;
  Documents* const documents;  // null: none are served
  DateLine date;
  PostQueue posts;
  SubscriptionIndex subscriptions;
  Connections connections;
};

}  // namespace zuva::serve
