/* export.h - marks what libvelk.so shows to its callers. */
#ifndef VELK_EXPORT_H_
#define VELK_EXPORT_H_

/* The library is built with hidden visibility: only what carries this mark is exported. */
#define VELK_API __attribute__((visibility("default")))

#endif /* VELK_EXPORT_H_ */
