// Outside every part.
