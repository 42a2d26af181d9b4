# Process start-up alone.
