// Every page of the product opens on the sample data, in every look, in English and in German.
import { after, before, test } from 'node:test'
import { Browser, Console, openPage, picture, setUp } from './console.mjs'

let console
let browser
let page
let pages

before(async () => {
  console = await Console.start({ sample: true })
  browser = await Browser.start()
  page = await browser.open(console)
  await setUp(page, console)
  pages = JSON.parse(console.run('pages', '--json')).filter(entry => entry.name !== 'allcontrols')
})

after(async () => {
  await browser?.end()
  await console?.end()
})

test('every page opens, and nothing in it is cut off', async () => {
  for (const { name, title } of pages) {
    await openPage(page, title, name)
    await picture(page, `page-${name}`)
  }
})

test('every page opens in German, and nothing in it is cut off', async () => {
  console.run('do', 'general', 'Combo1=german')
  // The language takes effect with the next page.
  await openPage(page, 'Domains', 'domainbw')
  await page.getByRole('link', { name: 'Allgemein' }).waitFor()
  for (const { name } of pages) {
    await page.getByRole('navigation').locator(`a[href$="${name}"]`).click()
    await page.locator(`main [data-control^="c-${name}-"]`).first().waitFor()
    await picture(page, `german-${name}`)
  }
})
