/** @file velpki/stack.h
 * STACK, the one list of the library.
 *
 * Every plural type (X509_NAME, X509_EXTENSIONS ...) is a STACK of element pointers under another name, with functions
 * of its own that copy and release elements. A stack itself never does. It must not be shared between threads while
 * any of them changes or, with a comparator, searches it.
 *
 * Conventions: docs/conventions.md. */
#ifndef VELPKI_STACK_H
#define VELPKI_STACK_H

#include <velpki/api.h>

VELPKI_BEGIN

/** A growing array of element pointers, null pointers among them. */
typedef struct {
  int count;                                  /**< elements */
  void **data;                                /**< element slots, the stack's own */
  int sorted;                                 /**< 1 when the elements are known to be in comparator order */
  int capacity;                               /**< slots allocated */
  int (*compare)(const void *, const void *); /**< gets pointers to slots, as qsort gives them; or null */
} STACK;

/** @name Making and copying
 * @{ */
/** Makes an empty stack of four slots, without comparator. */
VELPKI_API STACK *new_STACK(void) VELPKI_NOEXCEPT;
/** Makes an empty stack of four slots with a comparator, which may be null. */
VELPKI_API STACK *new_STACK_compare_func(int (*compare)(const void *, const void *)) VELPKI_NOEXCEPT;
/** Makes a second list of the same elements, with the same comparator.
 * @warning free_STACK_values on both releases them twice. */
VELPKI_API STACK *dup_STACK(const STACK *stack) VELPKI_NOEXCEPT;
/** @} */

/** @name Elements
 * @{ */
/** Inserts at a position, appending when it is below 0 or not below the count. Returns the new count, or 0 for null or
 * exhausted memory, and clears the sorted flag. */
VELPKI_API int insert_STACK_value(STACK *stack, void *element, int position) VELPKI_NOEXCEPT;
/** Appends an element; the results of insert_STACK_value. */
VELPKI_API int push_STACK_value(STACK *stack, void *element) VELPKI_NOEXCEPT;
/** Takes the element at a position out and returns it; null for a position outside the list. */
VELPKI_API void *remove_STACK_value(STACK *stack, int position) VELPKI_NOEXCEPT;
/** Takes the last element out and returns it; null for an empty list. */
VELPKI_API void *pop_STACK_value(STACK *stack) VELPKI_NOEXCEPT;
/** Replaces the element at a position and returns the new one; null for a position outside the list.
 * @warning The sorted flag stays as it is, and the old element is not released. */
VELPKI_API void *set_STACK_value(STACK *stack, void *element, int position) VELPKI_NOEXCEPT;
/** Does what set_STACK_value does, with its warning; the position stands before the element. */
VELPKI_API void *sk_set(STACK *stack, int position, void *element) VELPKI_NOEXCEPT;
/** Lends the element at a position; null for a position outside the list. */
VELPKI_API void *get_STACK_value(const STACK *stack, int position) VELPKI_NOEXCEPT;
/** Returns the number of elements, -1 for null. */
VELPKI_API int get_STACK_count(const STACK *stack) VELPKI_NOEXCEPT;
/** @} */

/** @name Searching and sorting
 * @{ */
/** Returns the index of the first equal element, or -1. Without a comparator equal means the same pointer; with one the
 * list is sorted first and searched by halves, and a null element is never found.
 * @warning With a comparator a search writes to the list. */
VELPKI_API int find_STACK_value(STACK *stack, void *element) VELPKI_NOEXCEPT;
/** Does what find_STACK_value does, but with a comparator it returns the index of the slot probed last, whether that
 * one is equal or not, and not the first of several equal ones; -1 for an empty list and a null element.
 * @warning With a comparator a search writes to the list. */
VELPKI_API int find_STACK_value_ex(STACK *stack, void *element) VELPKI_NOEXCEPT;
/** Sorts by the comparator in place; nothing without one or when the sorted flag is set. Equal elements keep no order.
 */
VELPKI_API void sort_STACK(STACK *stack) VELPKI_NOEXCEPT;
/** Returns the sorted flag, 1 for null. */
VELPKI_API int is_STACK_sorted(const STACK *stack) VELPKI_NOEXCEPT;
/** @} */

/** @name Releasing
 * @{ */
/** Releases the list, not its elements. */
VELPKI_API void free_STACK(STACK *stack) VELPKI_NOEXCEPT;
/** Clears each slot and calls `release` on its element if that is not null, then releases the list. A null `release`
 * leaves the elements. */
VELPKI_API void free_STACK_values(STACK *stack, void (*release)(void *)) VELPKI_NOEXCEPT;
/** @} */

VELPKI_END

#endif
