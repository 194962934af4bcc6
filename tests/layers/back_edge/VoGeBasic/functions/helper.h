// Stands for any header of the functions.
