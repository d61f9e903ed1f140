#pragma once

#include <memory>
#include <string>

#include "platform/value/Error.h"

namespace quillet::news {

// What the shell reads of the service configuration.
struct ServiceConfiguration {
  std::string msgSenderID;  // empty when nothing was configured
};

// The service context as the shell sees it: configure once at launch, then
// read the configuration. The process-wide instance is reached through
// sharedInstance(); until the real context is installed it is the
// unconfigured one. Main thread.
class ServiceContext {
 public:
  virtual ~ServiceContext() = default;
  static std::shared_ptr<ServiceContext> sharedInstance();
  static void setSharedInstance(std::shared_ptr<ServiceContext> context);

  // False with `error` (domain "com.stikri.context") when the services cannot be configured.
  virtual bool configureWithError(platform::Error* error) = 0;
  virtual const ServiceConfiguration& configuration() const = 0;
};

// A context with no configuration: each call logs one line and fails.
class UnconfiguredServiceContext : public ServiceContext {
 public:
  bool configureWithError(platform::Error* error) override;
  const ServiceConfiguration& configuration() const override { return configuration_; }

 private:
  ServiceConfiguration configuration_;
};

// A context whose configuration is given whole when it is made (the driver's
// --msg-sender-id): configuring always succeeds.
class FixedServiceContext : public ServiceContext {
 public:
  explicit FixedServiceContext(ServiceConfiguration configuration) : configuration_(std::move(configuration)) {}
  bool configureWithError(platform::Error*) override { return true; }
  const ServiceConfiguration& configuration() const override { return configuration_; }

 private:
  ServiceConfiguration configuration_;
};

}  // namespace quillet::news
