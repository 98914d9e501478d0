#pragma once

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

namespace zktarn {

/// A procedure supplied by the caller: one object address and one function address.
///
/// It binds to any callable object (a mutable lambda included) and to any plain function. It never
/// owns and never allocates, so it is meant for parameters alone: one that was bound to a temporary
/// callable is dangling at the end of the full expression. One bound to a plain function stays
/// valid for ever. To keep a callable beyond the call, use `std::function`.
///
/// There is no empty state, and binding a null function pointer is undefined, as is an exception
/// that leaves the callable: no frame of the library can be unwound.
template <class Signature>
class function_ref;

template <class Result, class... Args>
class function_ref<Result(Args...)> {
public:
    /// Refers to `callable`, which must outlive every call through this reference.
    template <class F>
        requires(!std::is_same_v<std::remove_cvref_t<F>, function_ref> &&
                 std::is_invocable_r_v<Result, F&, Args...>)
    function_ref(F&& callable)
    noexcept {
        using function = std::decay_t<F>;
        if constexpr (is_function_pointer<function>) {
            bound_.function = reinterpret_cast<void (*)()>(static_cast<function>(callable));
            call_ = [](target bound, Args... args) -> Result {
                return invoke(*reinterpret_cast<function>(bound.function),
                              std::forward<Args>(args)...);
            };
        } else {
            using object = std::remove_reference_t<F>;
            bound_.object = const_cast<void*>(static_cast<const void*>(std::addressof(callable)));
            call_ = [](target bound, Args... args) -> Result {
                return invoke(*static_cast<object*>(bound.object), std::forward<Args>(args)...);
            };
        }
    }

    /// Calls what it refers to.
    Result operator()(Args... args) const { return call_(bound_, std::forward<Args>(args)...); }

private:
    // A function address need not fit the type of an object address, so each has its own member.
    union target {
        void* object;
        void (*function)();
    };

    template <class P>
    static constexpr bool is_function_pointer =
        std::is_pointer_v<P>&& std::is_function_v<std::remove_pointer_t<P>>;

    template <class F>
    static Result invoke(F& callable, Args&&... args) {
        if constexpr (std::is_void_v<Result>) {
            std::invoke(callable, std::forward<Args>(args)...);
        } else {
            return std::invoke(callable, std::forward<Args>(args)...);
        }
    }

    target bound_;
    Result (*call_)(target, Args...);
};

} // namespace zktarn
