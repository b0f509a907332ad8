#ifndef CMCFG_EXPORT_H_
#define CMCFG_EXPORT_H_

// Marks the library's exported interface; everything else is hidden.
#define CMCFG_EXPORT __attribute__((visibility("default")))

#endif  // CMCFG_EXPORT_H_
