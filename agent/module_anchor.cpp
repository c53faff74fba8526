// The module's code lives in the agent library, linked in whole; a module target needs one source of its own.
