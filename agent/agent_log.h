#ifndef CMCFG_AGENT_AGENT_LOG_H_
#define CMCFG_AGENT_AGENT_LOG_H_

// Writes a trace line only when the agent's logging is on, so the
// arguments are not even formatted otherwise.
#define CMCFG_TRACE(agent, ...)                  \
  do {                                           \
    if ((agent)->logEnabled) (agent)->LOG(__VA_ARGS__); \
  } while (0)

#endif  // CMCFG_AGENT_AGENT_LOG_H_
