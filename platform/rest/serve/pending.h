#pragma once

#include <memory>

namespace zuva::serve {

/// Knows whether an asynchronous operation is under way: its handler holds the ticket. The handler is destroyed also where the operation
/// ends with an exception and is never called, so that whoever looks here sees that it has to be begun again. For one thread.
class Pending {
 public:
  using Ticket = std::shared_ptr<const char>;

  Ticket Begin() const { return ticket_; }
  bool IsUnderWay() const { return ticket_.use_count() > 1; }

 private:
  const Ticket ticket_ = std::make_shared<const char>();
};

}  // namespace zuva::serve
