# The installed tree; filled in by the targets' own install rules.
