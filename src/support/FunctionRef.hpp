// A reference to a function object, for parameters that are called before the callee returns.
#pragma once

#include <concepts>
#include <memory>
#include <utility>

namespace vantor {

template <typename Signature>
class FunctionRef;

/// Refers to any function object with a matching call operator. It does not own the object, which
/// must outlive it, as a lambda in an argument list does. Unlike std::function it adds no code to
/// copy and destroy the object at every call.
template <typename Result, typename... Args>
class FunctionRef<Result(Args...)> {
public:
    template <std::invocable<Args...> Body>
    FunctionRef(const Body& body) noexcept
        : mBody(std::addressof(body)), mCall([](const void* called, Args... args) -> Result {
              return (*static_cast<const Body*>(called))(std::forward<Args>(args)...);
          }) {}

    Result operator()(Args... args) const { return mCall(mBody, std::forward<Args>(args)...); }

private:
    const void* mBody;
    Result (*mCall)(const void*, Args...);
};

}  // namespace vantor
