/* velpki/stack.h: STACK, the one list of the library.
 *
 * Every plural type (X509_NAME, X509_EXTENSIONS ...) is a STACK of element pointers under another name. A stack never
 * copies or releases elements by itself. A stack must not be shared between threads while any of them changes or, with
 * a comparator, searches it. Conventions: docs/conventions.md. */
#ifndef VELPKI_STACK_H
#define VELPKI_STACK_H

#include <velpki/api.h>

VELPKI_BEGIN

typedef struct {
  int count;                                  /* elements */
  void **data;                                /* element slots, the stack's own */
  int sorted;                                 /* 1 when the elements are known to be in comparator order */
  int capacity;                               /* slots allocated */
  int (*compare)(const void *, const void *); /* gets pointers to slots, as qsort gives them; or null */
} STACK;

VELPKI_API STACK *new_STACK(void) VELPKI_NOEXCEPT; /* four slots, no comparator */
VELPKI_API STACK *new_STACK_compare_func(int (*compare)(const void *, const void *)) VELPKI_NOEXCEPT;
/* dup_STACK makes a second list of the same elements. @warning free_STACK_values on both releases them twice. */
VELPKI_API STACK *dup_STACK(const STACK *stack) VELPKI_NOEXCEPT;
/* insert_STACK_value inserts at a position, appending when it is below 0 or not below the count. It returns the new
 * count, or 0 for null or exhausted memory, and clears the sorted flag. */
VELPKI_API int insert_STACK_value(STACK *stack, void *element, int position) VELPKI_NOEXCEPT;
VELPKI_API int push_STACK_value(STACK *stack, void *element) VELPKI_NOEXCEPT;
/* remove_STACK_value and pop_STACK_value take an element out and return it; null when there is none. */
VELPKI_API void *remove_STACK_value(STACK *stack, int position) VELPKI_NOEXCEPT;
VELPKI_API void *pop_STACK_value(STACK *stack) VELPKI_NOEXCEPT;
/* set_STACK_value and sk_set replace an element and return the new one; null for a position outside the list.
 * @warning The sorted flag stays as it is, and the old element is not released. */
VELPKI_API void *set_STACK_value(STACK *stack, void *element, int position) VELPKI_NOEXCEPT;
VELPKI_API void *sk_set(STACK *stack, int position, void *element) VELPKI_NOEXCEPT;
VELPKI_API void *get_STACK_value(const STACK *stack, int position) VELPKI_NOEXCEPT;
VELPKI_API int get_STACK_count(const STACK *stack) VELPKI_NOEXCEPT; /* -1 for null */
/* find_STACK_value returns the index of the first equal element, or -1. Without a comparator equal means the same
 * pointer; with one the list is sorted first and searched by halves, and a null element is never found.
 * find_STACK_value_ex returns, where nothing is equal, the index of the last slot probed.
 * @warning With a comparator a search writes to the list. */
VELPKI_API int find_STACK_value(STACK *stack, void *element) VELPKI_NOEXCEPT;
VELPKI_API int find_STACK_value_ex(STACK *stack, void *element) VELPKI_NOEXCEPT;
VELPKI_API void sort_STACK(STACK *stack) VELPKI_NOEXCEPT; /* nothing without a comparator or when the flag is set */
VELPKI_API int is_STACK_sorted(const STACK *stack) VELPKI_NOEXCEPT; /* 1 for null */
VELPKI_API void free_STACK(STACK *stack) VELPKI_NOEXCEPT;           /* not the elements */
/* free_STACK_values clears each slot and calls `release` on its element if not null, then releases the stack. */
VELPKI_API void free_STACK_values(STACK *stack, void (*release)(void *)) VELPKI_NOEXCEPT;

VELPKI_END

#endif
