// Private members: reaching a member that is private, without opening the class.
//
// The language lets an explicit instantiation name a private member. A tag names the member's type,
// the instantiation binds the member to the tag, and get(Tag()) hands the pointer to member out:
//
//   struct Split { using type = qmStaticStrength::Strategy (qmStaticStrength::*)(); friend type get(Split); };
//   template struct Expose<Split, &qmStaticStrength::calculate_split>;
//   ... (analysis.*get(Split()))() ...
#pragma once

template <class Tag, typename Tag::type Member> struct Expose {
    friend typename Tag::type get(Tag) { return Member; }
};
