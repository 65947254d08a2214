/** Paths of the console separate folders by backslashes, whatever its system does; people see those of its system. */
export const systemPath = (path: string): string => path.replaceAll('\\', '/')

export const productPath = (path: string): string => path.replaceAll('/', '\\')

/** The name of the file that a path of either kind names. */
export const fileNameOf = (path: string): string => path.slice(Math.max(path.lastIndexOf('/'), path.lastIndexOf('\\')) + 1)
