// Nothing, in the place of the manifest that a compiler adds to the programs it makes.
