// Pointer strings: how objects cross into Python, as texts of an address and the type it points to.
//
//   "_1a2b3c_qcSite_p"   "_", the address in lower-case hexadecimal, the type name
//   "NULL"               the null pointer, which has no type
//
// A type name begins with "_" and ends in "_p", or "_pp" for a pointer to a pointer. One name can stand
// for another: see registerType().
#pragma once

#include <cstdint>
#include <string>

namespace pointers {

/// Turns an address of one type into one of the other, for types that do not lie at one address.
using Conversion = void* (*)(void*);

/// The pointer string of an address; "NULL" for the null pointer.
std::string encode(const void* address, const char* typeName);

/// The pointer string of an address, with its type for the null pointer too: "_0_int_p".
std::string encodeTyped(std::uintptr_t address, const char* typeName);

/// Reads a pointer string.
///
/// @param expected  the type name that it has to have, or to be equivalent to; null: any
/// @param address   receives the address read, also where the type is another one; null for a text that
///                  is no pointer string
/// @return whether it is a pointer of that type; "NULL" is one of every type
bool decode(const char* text, const char* expected, void*& address);

/// The type name within a pointer string; empty for "NULL" and for a text that is none.
const char* typeNameIn(const char* text);

/// The type name of a declared type: "_" and the text, white space as "_", "*" and "&" as "p".
/// "int *" gives "_int_p".
std::string typeNameOf(const char* declared);

/// Lets `equivalent` stand where `type` is expected, whatever follows the two names: with "_long" and
/// "_unsigned_long", a "_unsigned_long_p" is taken for a "_long_p". Not the other way round.
/// @param conversion  null: none, or the one registered before
void registerType(const char* type, const char* equivalent, Conversion conversion);

}   // namespace pointers
