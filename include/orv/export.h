/* Marks of the agent's C interface. */
#ifndef ORV_EXPORT_H
#define ORV_EXPORT_H

/* On a declaration: the library exports it. Everything else in the library stays hidden. */
#define ORV_API __attribute__((visibility("default")))

#ifdef __cplusplus
#define ORV_BEGIN_DECLS extern "C" {
#define ORV_END_DECLS }
#else
#define ORV_BEGIN_DECLS
#define ORV_END_DECLS
#endif

#endif
