// Private members: reaching a member that is private, without opening the class.
//
// The language lets an explicit instantiation name a private member. A tag names the member's type,
// the instantiation binds the member to the tag, and get(Tag()) hands the pointer to member out:
//
//   struct Split { using type = qmStaticStrength::Strategy (qmStaticStrength::*)(); friend type get(Split); };
//   template struct Expose<Split, &qmStaticStrength::calculate_split>;
//   ... callPrivate<Split>(analysis) ...
#pragma once

#include <utility>

template <class Tag, typename Tag::type Member> struct Expose {
    friend typename Tag::type get(Tag) { return Member; }
};

/// Calls a private member function by its tag. By way of a reference: g++ 12's sanitizer refuses the
/// arrow form on a pointer that is sound.
template <class Tag, class Object, class... Arguments>
decltype(auto) callPrivate(Object& object, Arguments&&... arguments)
{
    return (object.*get(Tag()))(std::forward<Arguments>(arguments)...);
}
