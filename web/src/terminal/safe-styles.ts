// The terminal library writes style elements and style attributes, which the content security policy refuses. Here they
// become constructed style sheets and style objects, which it allows.

/** The style elements that are made while `make` runs are sheets of the document, as long as they stand somewhere. */
export function withSafeStyles(make: () => void): void {
  const createElement = document.createElement.bind(document)
  document.createElement = ((tag: string, options?: ElementCreationOptions) =>
    tag === 'style' ? styleElement() : createElement(tag, options)) as typeof document.createElement
  try {
    make()
  } finally {
    Reflect.deleteProperty(document, 'createElement')
  }
}

/** Stands where the style element would stand. */
function styleElement(): HTMLElement {
  const element = Document.prototype.createElement.call(document, 'span')
  const sheet = new CSSStyleSheet()
  const replace = (text: string): void => sheet.replaceSync(text)
  element.hidden = true
  document.adoptedStyleSheets.push(sheet)
  Object.defineProperty(element, 'textContent', { set: replace })
  element.remove = (): void => {
    document.adoptedStyleSheets = document.adoptedStyleSheets.filter(other => other !== sheet)
    Element.prototype.remove.call(element)
  }
  return element
}

/** The cells of a terminal are spans. */
export function makeSpansSafe(): void {
  HTMLSpanElement.prototype.setAttribute = function setAttribute(name: string, value: string): void {
    if (name === 'style') this.style.cssText = value
    else Element.prototype.setAttribute.call(this, name, value)
  }
}
