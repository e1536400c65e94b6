// SPDX-License-Identifier: Apache-2.0
// Which lock guards what, in attributes that clang++ checks (-Wthread-safety); nothing on other compilers.
// Every LOCK is the name of a LockTag or of an object of a class marked as a capability.
#pragma once

#ifdef __clang__
#define KEST_THREAD_SAFETY(attribute) __attribute__((attribute))
#else
#define KEST_THREAD_SAFETY(attribute)
#endif

// For classes: a lock, and what holds one for a scope.
#define KEST_CAPABILITY KEST_THREAD_SAFETY(capability("mutex"))
#define KEST_SCOPED_CAPABILITY KEST_THREAD_SAFETY(scoped_lockable)

// For variables: read and written only with the lock held.
#define KEST_GUARDED_BY(LOCK) KEST_THREAD_SAFETY(guarded_by(LOCK))

// For functions: called only with the lock held, or never.
#define KEST_REQUIRES_LOCK(LOCK) KEST_THREAD_SAFETY(requires_capability(LOCK))
#define KEST_EXCLUDES_LOCK(LOCK) KEST_THREAD_SAFETY(locks_excluded(LOCK))

// For functions: takes the lock, gives it up. Without a name, that of the scoped capability.
#define KEST_ACQUIRES_LOCK(LOCK) KEST_THREAD_SAFETY(acquire_capability(LOCK))
#define KEST_RELEASES_LOCK(...) KEST_THREAD_SAFETY(release_capability(__VA_ARGS__))

// For functions whose body is right but not by these rules. Say why.
#define KEST_UNCHECKED_LOCKS KEST_THREAD_SAFETY(no_thread_safety_analysis)

namespace kest {

// Stands for a mutex whose type cannot be marked.
struct KEST_CAPABILITY LockTag {};

}  // namespace kest
