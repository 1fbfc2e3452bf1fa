#pragma once

namespace brimvault::engine {

/// Is told what becomes of the administrator's rights. Called on the thread that asks for them.
class AuthorizationListener {
public:
    virtual ~AuthorizationListener() = default;
    virtual void onAuthorizationComplete() = 0;
    virtual void onAuthorizationFailed() = 0;
    virtual void onDeAuthorizationComplete() = 0;
    virtual void onCommadExecuteSuccess() = 0;
    virtual void onCommadExecuteFailure() = 0;
};

}  // namespace brimvault::engine
