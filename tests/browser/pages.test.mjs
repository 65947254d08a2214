// Every page of the product opens on the sample data, in every look, in English and in German.
import { test } from 'node:test'
import { openNamed, openPage, picture, withConsole } from './console.mjs'

let console
let page
let pages

withConsole({ sample: true }, started => {
  ;({ console, page } = started)
  pages = JSON.parse(console.run('pages', '--json')).filter(entry => entry.name !== 'allcontrols')
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
  await page.getByRole('link', { name: 'Domänen', exact: true }).waitFor()
  for (const { name } of pages) {
    await openNamed(page, name)
    await picture(page, `german-${name}`)
  }
})
